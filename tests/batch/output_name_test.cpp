// (tests to come)
