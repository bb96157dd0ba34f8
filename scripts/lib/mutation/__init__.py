"""What scripts/mutate is made of: points of change, changed sources, their build, and the runs of the tests."""
