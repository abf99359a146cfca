sum(a)
%%
1 GROUP BY b HAVING 1