COUNT(DISTINCT b)
%%
a > 1 AND b IS NOT NULL
%%
b <> 'z'