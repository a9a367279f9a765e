"""What all tests share."""
import hypothesis

# The same cases in every run.
hypothesis.settings.register_profile("repeatable", derandomize=True, deadline=None, max_examples=60, database=None)
hypothesis.settings.load_profile("repeatable")
