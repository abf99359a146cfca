-- Four sensors, one multiplexer and a converter. Calibration runs from the last step back to the first.
CREATE TABLE stages(stage TEXT, noise REAL, delay REAL);
INSERT INTO stages VALUES
('drive-end',81.5,0.4),
('fan-end',80.2,0.4),
('gearbox',78.8,0.6),
('foundation',84.1,0.4),
('mux',96.0,0.2),
('pga',92.3,1.1),
('anti-alias',90.7,14.0),
('hold',89.9,0.8),
('adc',86.4,4.0),
('decimate',98.1,120.0),
('fft',NULL,850.0);
CREATE TABLE signals(source TEXT, target TEXT, samples REAL, level REAL, clip REAL);
INSERT INTO signals VALUES
('drive-end','mux',NULL,0.42,0.0001),
('fan-end','mux',NULL,0.38,0.0),
('gearbox','mux',NULL,1.61,0.0123),
('foundation','mux',NULL,0.05,0.0),
('mux','pga',NULL,0.62,NULL),
('pga','anti-alias',NULL,2.11,0.0042),
('anti-alias','hold',NULL,2.04,NULL),
('hold','adc',NULL,2.04,NULL),
('reference','adc',NULL,4.096,NULL),
('adc','decimate',1024000,NULL,NULL),
('decimate','window',64000,NULL,NULL),
('window','fft',64000,NULL,NULL),
('decimate','gain-control',1000,NULL,0.0031),
('adc','calibration',10,NULL,NULL),
('fft','memory',31.25,NULL,NULL);
