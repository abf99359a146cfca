SUM(a) /* ) */ -- )
+ COUNT(*) -- end