-- The network of a small firm on two floors. Links are cables; both directions carry data.
CREATE TABLE devices(device TEXT, load REAL, uptime INTEGER);
INSERT INTO devices VALUES
('router',0.34,7862400),
('firewall',0.61,2592000),
('core',0.18,15724800),
('switch-ground',0.09,15724800),
('wifi-ground',0.22,864000),
('switch-first',0.12,15724800),
('wifi-first',0.31,864000),
('files',0.27,5184000),
('mail',0.15,5184000),
('backup',0.04,604800);
CREATE TABLE cables(source TEXT, target TEXT, down INTEGER, up INTEGER, errors INTEGER);
INSERT INTO cables VALUES
('provider','router',187000000,41200000,0),
('router','firewall',187000000,41200000,2),
('firewall','core',96300000,40800000,0),
('core','switch-ground',48100000,9300000,0),
('core','switch-first',61700000,22900000,14),
('core','files',212000000,164000000,0),
('core','mail',8400000,5200000,0),
('files','backup',310000000,1200000,0),
('switch-ground','reception',3100000,640000,NULL),
('switch-ground','meeting',12600000,8800000,NULL),
('switch-ground','till',84000,61000,NULL),
('switch-ground','printer-ground',420000,3000,NULL),
('switch-ground','wifi-ground',22100000,4700000,NULL),
('switch-first','accounts',5600000,1900000,NULL),
('switch-first','drawing-office',41200000,18700000,NULL),
('switch-first','plotter',2900000,4000,NULL),
('switch-first','wifi-first',9800000,2100000,NULL),
('ground','phones',512000,512000,NULL),
('first','phones',384000,384000,NULL),
('guests','wifi-ground',17900000,3600000,NULL);
