"""Waiting for a thing to be so, never for time to pass."""

import time

STEP = 0.01


class NotYet(AssertionError):
    """What was waited for did not come about within its limit."""


def wait_for(condition, limit=5.0, what=None):
    """The first true value that `condition` gives; a lookup that fails meanwhile counts as not yet."""
    end = time.monotonic() + limit
    while True:
        try:
            value = condition()
        except LookupError:
            value = None
        if value:
            return value
        if time.monotonic() > end:
            raise NotYet(f"not within {limit} s: {what() if callable(what) else what or condition}")
        time.sleep(STEP)


def holds_for(condition, seconds, what=None):
    """Asserts that `condition` stays true for `seconds`: the only way to see that nothing happens."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not condition():
            raise NotYet(f"ended {end - time.monotonic():.2f} s before its {seconds} s: {what or condition}")
        time.sleep(STEP)
