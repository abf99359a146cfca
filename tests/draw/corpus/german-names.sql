-- Long German names, as on the door signs of an authority.
CREATE TABLE stellen(stelle TEXT, faelle INTEGER, dauer INTEGER, quote REAL);
INSERT INTO stellen VALUES
('post',412,1380,0.998),
('bauamt',188,NULL,0.71),
('antraege',96,777600,0.64),
('statik',31,1036800,0.58),
('denkmal',12,1900800,0.49),
('vermessung',49,432000,0.83),
('verkehr',240,NULL,NULL),
('zulassung',171,1500,0.97),
('fuehrerschein',69,1814400,0.88),
('kasse',530,345600,0.92),
('aufsicht',4,NULL,NULL),
('drucker',1210,7200,NULL);
CREATE TABLE wege(von TEXT, nach TEXT, menge INTEGER, laufzeit INTEGER);
INSERT INTO wege VALUES
('buerger','post',412,3600),
('post','antraege',41,NULL),
('post','zulassung',171,NULL),
('post','fuehrerschein',69,NULL),
('antraege','statik',31,86400),
('statik','antraege',27,259200),
('antraege','denkmal',12,604800),
('vermessung','antraege',49,NULL),
('denkmal','bauamt',2,NULL),
('bauamt','vermessung',44,NULL),
('antraege','buerger',58,172800),
('antraege','kasse',61,NULL),
('zulassung','kasse',168,NULL),
('kasse','drucker',230,NULL),
('drucker','buerger',1210,129600),
('verkehr','archiv',220,NULL),
('bauamt','archiv',95,NULL);
