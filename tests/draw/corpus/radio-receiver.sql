-- A receiver with two mixers and automatic gain control.
CREATE TABLE stages(stage TEXT, gain INTEGER, figure REAL);
INSERT INTO stages VALUES
('preselector',-3,3.0),
('rf-amp',14,4.2),
('first-mixer',-7,7.5),
('roofing',-4,4.0),
('first-if',22,5.1),
('second-mixer',-6,8.0),
('crystal-filter',-5,5.0),
('second-if',46,6.3),
('detector',-2,NULL),
('audio',38,12.0);
CREATE TABLE paths(source TEXT, target TEXT, freq INTEGER, level REAL);
INSERT INTO paths VALUES
('antenna','preselector',14200000,-83.5),
('preselector','rf-amp',14200000,-86.5),
('rf-amp','first-mixer',14200000,-72.5),
('first-lo','first-mixer',59655000,7.0),
('first-mixer','roofing',45455000,-79.5),
('roofing','first-if',45455000,-83.5),
('first-if','second-mixer',45455000,-61.5),
('second-lo','second-mixer',45000000,7.0),
('second-mixer','crystal-filter',455000,-67.5),
('crystal-filter','second-if',455000,-72.5),
('second-if','detector',455000,-26.5),
('beat','detector',453500,0.0),
('detector','audio',1500,-28.5),
('audio','phones',1500,9.5),
('second-if','agc',455000,-26.5);
