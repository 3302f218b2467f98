// Filled in by its suite.
