-- A bus with many devices. The bus is a node in the middle; devices talk over it in both directions.
CREATE TABLE nodes(id TEXT, value REAL, power INTEGER, frames INTEGER);
INSERT INTO nodes VALUES
('bus',NULL,3,184200),
('supply',41.0,6,NULL),
('gateway',38.5,4,NULL),
('panel',NULL,3,NULL),
('outside',6.4,NULL,NULL),
('hall',19.8,NULL,NULL),
('kitchen',21.3,NULL,NULL),
('bath',22.9,NULL,NULL),
('nursery',20.6,NULL,NULL),
('dimmer',NULL,64,NULL),
('relay',NULL,210,NULL),
('boiler',61.2,8400,NULL),
('pump',NULL,38,NULL);
CREATE TABLE links(source TEXT, target TEXT, telegrams INTEGER, lost REAL);
INSERT INTO links VALUES
('gateway','bus',210,0.0004),
('panel','bus',44,NULL),
('outside','bus',6,NULL),
('hall','bus',6,NULL),
('kitchen','bus',6,0.0012),
('bath','bus',6,NULL),
('nursery','bus',6,0.0231),
('sun','bus',12,NULL),
('wind','bus',30,NULL),
('bus','valve-kitchen',2,NULL),
('bus','valve-bath',2,NULL),
('bus','valve-nursery',2,NULL),
('bus','dimmer',9,0.0),
('bus','relay',14,0.0),
('bus','blinds-south',1,NULL),
('bus','blinds-west',1,NULL),
('wind','actuators',0,NULL),
('bus','boiler',20,0.0001),
('phone','gateway',3,NULL),
('blinds-west','actuators',0,NULL),
('sensors','bath',1,NULL);
