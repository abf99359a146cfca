CREATE TABLE flows(src TEXT, dst TEXT, port INTEGER, status INTEGER, bytes REAL, seconds REAL);
INSERT INTO flows VALUES ('web', 'db', 80, 200, 100, 4), ('web', 'db', 443, 500, 50, 2), ('a/b c', '%', 80, 503, 9, 2), ('it''s', '', 22, 200, 7, 2);
