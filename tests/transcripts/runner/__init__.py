"""Replays transcripts: command lines with everything that they print and leave behind."""
