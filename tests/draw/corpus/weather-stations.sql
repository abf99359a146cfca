-- Most of these stations have no link at all; three small groups do.
CREATE TABLE stations(station TEXT, temp REAL, wind REAL, battery REAL);
INSERT INTO stations VALUES
('ridge',-4.2,21.8,0.71),
('saddle',-2.9,14.0,0.66),
('col-hut',-1.0,9.2,0.98),
('valley-floor',7.4,1.1,0.9),
('dam',5.5,4.0,0.87),
('glacier-snout',0.3,6.6,0.52),
('moraine',1.9,5.9,0.49),
('old-mill',9.0,0.4,0.93),
('school',9.6,1.2,1.0),
('airfield',8.8,3.7,1.0),
('tower',8.5,5.2,1.0),
('peak-east',-7.7,28.1,0.38),
('peak-west',-8.1,31.4,0.29),
('lake',6.1,7.3,0.8),
('swamp',7.0,2.2,0.77),
('vineyard',11.2,1.8,0.84),
('orchard',10.7,1.5,0.81),
('chapel',3.1,4.4,0.6),
('bridge',8.1,3.0,0.95),
('tunnel-north',2.2,8.8,1.0),
('tunnel-south',6.3,2.7,1.0),
('quarry',7.9,3.3,0.7),
('garden',10.1,0.9,0.99);
CREATE TABLE radio(source TEXT, target TEXT, packets INTEGER, delay INTEGER);
INSERT INTO radio VALUES
('ridge','col-hut',6,95),
('saddle','col-hut',6,64),
('glacier-snout','col-hut',4,140),
('moraine','glacier-snout',2,NULL),
('airfield','tower',60,1),
('tower','forecast',60,2),
('tower','tower',1,NULL),
('tunnel-north','tunnel-south',12,3);
