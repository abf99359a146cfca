-- Other values of the shop: more users, fewer bytes, the same time.
UPDATE shop SET users = users * 2 - 300, bytes = bytes * 0.8, errors = errors - 12;
