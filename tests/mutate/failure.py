"""Errors that are told, not traced."""


class Failure(Exception):
    """An error; its text is for the user."""
