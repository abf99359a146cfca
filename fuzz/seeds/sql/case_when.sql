CASE WHEN count(*) > 1 THEN total(a) ELSE avg(a) END
%%
b LIKE 'x%' ESCAPE '!'