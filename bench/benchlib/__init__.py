"""The parts of bench/run and bench/work."""
