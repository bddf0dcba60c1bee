// Of no use but for its name.
