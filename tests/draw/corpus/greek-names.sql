-- Greek names: the water supply of an island town.
CREATE TABLE stathmoi(stathmos TEXT, stathmi REAL, piesi REAL, thermo REAL);
INSERT INTO stathmoi VALUES
('pigi',NULL,0.8,14.2),
('geotrisi',NULL,2.1,17.8),
('afalatosi',NULL,58.0,NULL),
('antlia',NULL,58.4,24.1),
('memvranes',NULL,56.9,24.6),
('anaktisi',NULL,54.0,25.0),
('dexamenes',0.74,NULL,NULL),
('pano',0.81,3.4,16.1),
('kato',0.66,1.2,17.0),
('chora',NULL,3.1,NULL),
('limani',NULL,2.6,NULL),
('xenodocheia',NULL,2.9,NULL),
('thalassa',NULL,NULL,21.3);
CREATE TABLE agogoi(apo TEXT, pros TEXT, paroxi REAL, apoleia REAL);
INSERT INTO agogoi VALUES
('pigi','pano',18.4,0.21),
('geotrisi','kato',31.0,0.08),
('thalassa','antlia',96.0,NULL),
('antlia','memvranes',96.0,NULL),
('memvranes','anaktisi',57.6,NULL),
('anaktisi','antlia',51.2,NULL),
('anaktisi','thalassa',57.6,NULL),
('memvranes','kato',38.4,0.01),
('kato','pano',44.0,NULL),
('pano','chora',41.2,0.17),
('pano','xenodocheia',19.8,0.09),
('kato','limani',22.5,0.12),
('xenodocheia','limani',0.0,NULL),
('dexamenes','pano',0.6,NULL);
