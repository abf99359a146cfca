json_group_array(json_object('a', a)) ->> 0
%%
a IN (SELECT value FROM json_each('[1, 2]'))