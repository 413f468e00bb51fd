// placeholder until the module's first source lands
