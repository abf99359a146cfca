-- Three nested control loops. Sensors lead back to the controllers.
CREATE TABLE blocks(block TEXT, goal REAL, actual REAL, out REAL);
INSERT INTO blocks VALUES
('master',182.0,180.6,0.67),
('boiler',NULL,181.1,NULL),
('fuel-control',NULL,NULL,0.58),
('fuel-valve',NULL,NULL,0.57),
('air-control',NULL,NULL,0.63),
('air-fan',NULL,NULL,0.62),
('furnace',NULL,1140.0,NULL),
('drum',NULL,181.1,NULL),
('level-control',NULL,NULL,0.44),
('feed-pump',NULL,104.5,0.45),
('turbine',NULL,178.3,NULL),
('condenser',NULL,41.7,NULL);
CREATE TABLE signals(source TEXT, target TEXT, value REAL, flow REAL, delay INTEGER);
INSERT INTO signals VALUES
('operator','master',NULL,NULL,500),
('master','fuel-control',NULL,NULL,20),
('master','air-control',NULL,NULL,20),
('fuel-valve','furnace',0.35,2.1,NULL),
('fuel-meter','fuel-control',NULL,2.1,40),
('air-fan','furnace',1.04,37.6,NULL),
('oxygen','air-control',NULL,NULL,900),
('air-control','fuel-control',NULL,NULL,10),
('drum-pressure','master',10.42,NULL,60),
('drum','turbine',10.42,29.8,NULL),
('turbine','condenser',0.08,29.5,NULL),
('condenser','feed-pump',0.9,29.4,NULL),
('feed-pump','drum',14.6,29.9,NULL),
('level','level-control',NULL,NULL,100),
('guard','boiler',NULL,NULL,5),
('boiler','oxygen',NULL,NULL,2),
('turbine','guard',NULL,NULL,8);
