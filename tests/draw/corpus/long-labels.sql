-- Names and labels as long as sentences. Many of them are shortened in drawings.
CREATE TABLE desks(desk TEXT, cases INTEGER, age INTEGER, cost REAL);
INSERT INTO desks VALUES
('first-line',318,93600,4.2),
('telephone',121,7260,3.1),
('chat',140,1860,0.9),
('letters',57,432000,11.75),
('tracing-desk',88,201600,7.3),
('depot-coast',34,NULL,NULL),
('depot-moor',21,NULL,NULL),
('depot-city',60,NULL,NULL),
('damage',41,345600,61.5),
('refunds',29,86400,38.4),
('lawyers',3,5184000,940);
CREATE TABLE handovers(source TEXT, target TEXT, count INTEGER, hours REAL, back REAL);
INSERT INTO handovers VALUES
('customer','telephone',610,0.1,NULL),
('customer','chat',1480,0.02,NULL),
('customer','letters',75,46.0,NULL),
('telephone','tracing-desk',190,4.5,0.082),
('chat','telephone',230,0.4,NULL),
('chat','tracing-desk',162,NULL,NULL),
('letters','damage',38,NULL,NULL),
('letters','first-line',19,NULL,NULL),
('first-line','letters',12,NULL,NULL),
('tracing-desk','depot-coast',71,26.0,NULL),
('tracing-desk','depot-moor',48,19.5,NULL),
('tracing-desk','depot-city',233,8.0,NULL),
('depots','first-line',16,NULL,NULL),
('tracing-desk','refunds',44,12.0,0.016),
('damage','refunds',27,NULL,NULL),
('damage','customer',18,NULL,NULL),
('refunds','customer',69,31.0,0.021);
