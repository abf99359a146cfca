-- The life of a network connection, from both sides. Labels count the transitions of one hour.
CREATE TABLE states(state TEXT, count INTEGER, held REAL);
INSERT INTO states VALUES
('idle',412,NULL),
('listening',18,86400),
('asked',7,0.084),
('offered',11,0.061),
('open',5320,341.5),
('closing-here',24,0.19),
('half-closed',61,12.8),
('closing-both',2,0.09),
('closing-there',33,4.1),
('last-word',9,0.08),
('quiet',870,60);
CREATE TABLE moves(source TEXT, target TEXT, moves INTEGER, wait REAL);
INSERT INTO moves VALUES
('idle','listening',18,NULL),
('idle','asked',41200,0.2),
('listening','offered',98100,NULL),
('listening','asked',12,NULL),
('asked','offered',4,NULL),
('asked','open',40700,84.3),
('asked','idle',496,9000),
('offered','open',97800,61.2),
('offered','listening',288,NULL),
('offered','closing-here',9,NULL),
('open','open',18400000,NULL),
('open','closing-here',71300,NULL),
('open','closing-there',66900,NULL),
('closing-here','half-closed',70800,92.0),
('closing-here','closing-both',410,NULL),
('closing-here','quiet',102,NULL),
('half-closed','quiet',70650,12800),
('closing-both','quiet',408,NULL),
('closing-there','last-word',66850,4100),
('last-word','idle',66830,80.0),
('quiet','idle',71160,60000);
