-- A phase-locked loop makes 2.4 GHz from a crystal. The loop filter is a group.
CREATE TABLE blocks(block TEXT, freq INTEGER, jitter REAL);
INSERT INTO blocks VALUES
('crystal',26000000,0.41),
('doubler',52000000,0.55),
('vco',2400000000,1.86),
('prescaler',600000000,NULL),
('counter',52000000,NULL),
('buffer',2400000000,1.92);
CREATE TABLE lines(source TEXT, target TEXT, hz INTEGER, volt REAL, amp REAL);
INSERT INTO lines VALUES
('crystal','doubler',26000000,NULL,NULL),
('doubler','detector',52000000,NULL,NULL),
('pump','loop-filter',NULL,NULL,120.5),
('pump','r-zero',NULL,NULL,118.2),
('r-zero','c-main',NULL,0.912,NULL),
('c-ripple','loop-filter',NULL,0.004,NULL),
('loop-filter','vco',NULL,0.931,NULL),
('vco','prescaler',2400000000,NULL,NULL),
('prescaler','counter',600000000,NULL,NULL),
('counter','modulator',52000000,NULL,NULL),
('counter','detector',52000000,NULL,NULL),
('dac','loop-filter',NULL,0.900,NULL),
('vco','loop',NULL,0.4,NULL),
('vco','buffer',2400000000,0.35,NULL),
('buffer','radio',2400000000,NULL,NULL),
('loop','c-main',NULL,0.02,NULL);
