CREATE TABLE t(a, b); INSERT INTO t VALUES (1, 'x'), (2, 'x'), (4, 'y'), (8, 'x'), (256, 'x');
