-- One booking service asks three kinds of partners and undoes everything when one of them refuses.
CREATE TABLE nodes(id TEXT, p95 INTEGER, rate REAL);
INSERT INTO nodes VALUES
('front',120,38.0),
('booking',2900,6.4),
('coordinator',2700,6.4),
('flights',1900,6.1),
('hotels',1100,4.8),
('cars',700,1.9),
('undo',800,0.6),
('airlines',1700,NULL),
('hotel-chains',950,NULL),
('rental',610,NULL),
('invoices',60,5.1);
CREATE TABLE links(source TEXT, target TEXT, calls REAL, fail REAL, time INTEGER);
INSERT INTO links VALUES
('traveller','front',38.0,0.0,120),
('front','coordinator',6.4,0.11,2700),
('coordinator','flights',6.1,0.06,NULL),
('coordinator','hotels',4.8,0.04,NULL),
('coordinator','cars',1.9,0.02,NULL),
('flights','airlines',12.2,0.06,1700),
('hotels','hotel-chains',9.6,0.04,950),
('cars','rental',3.8,0.02,610),
('flights','undo',0.4,1.0,NULL),
('hotels','undo',0.2,1.0,NULL),
('cars','undo',0.04,1.0,NULL),
('undo','coordinator',0.6,0.0,NULL),
('booking','front',5.8,0.0,NULL),
('coordinator','invoices',5.1,0.0,NULL),
('invoices','traveller',5.1,0.003,NULL);
