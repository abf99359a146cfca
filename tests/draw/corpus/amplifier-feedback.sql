-- A microphone amplifier. Two feedback paths set its gain and its working point.
CREATE TABLE stages(stage TEXT, gain REAL, current REAL);
INSERT INTO stages VALUES
('bias',NULL,0.35),
('input',18.2,1.1),
('mid',42.6,4.8),
('driver',6.1,12.4),
('output',-0.4,85.0),
('feedback',-31.5,NULL),
('servo',0.0,2.2);
CREATE TABLE wires(source TEXT, target TEXT, signal REAL, noise REAL);
INSERT INTO wires VALUES
('mic','input',2.1,0.84),
('bias','input',650,NULL),
('input','sum',17.0,1.9),
('sum','mid',9.8,NULL),
('mid','driver',1320,NULL),
('driver','output',2660,NULL),
('output','feedback',2540,NULL),
('feedback','sum',67.6,NULL),
('output','servo',4.2,NULL),
('servo','bias',-12.5,NULL),
('output','speaker',2540,38.5);
