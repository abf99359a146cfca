-- A backup of /usr/share/doc: bytes and the time spent writing, for each third of its 18.8 seconds.
-- Recorded by record.sh on 2026-11-21.
CREATE TABLE flows(ts REAL, span REAL, source TEXT, target TEXT, bytes INTEGER, seconds REAL);
INSERT INTO flows VALUES
(0,6.27,'tee','xz',55996416,2.321),
(0,6.27,'xz','docs.tar.xz',14376960,0.164),
(6.27,6.27,'tee','xz',50862080,3.364),
(6.27,6.27,'xz','docs.tar.xz',20127744,0.262),
(12.54,6.27,'tee','xz',43618304,2.988),
(12.54,6.27,'xz','docs.tar.xz',18462008,0.222);
