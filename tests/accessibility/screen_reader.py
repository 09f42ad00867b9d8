"""What the tests of accessibility have in common: looking at a program as a screen reader does."""

import os
import pathlib
import sys
import time

import pyatspi
from gi.repository import GLib

DEADLINE = 60
ENVIRONMENT = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_ACCESSIBILITY="1")


def fail(text):
    sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {text}")


def wait_for(what, condition):
    """The first true answer of the condition; events are delivered meanwhile."""
    end = time.monotonic() + DEADLINE
    context = GLib.MainContext.default()
    # Wakes the loop to look again when no event does.
    timer = GLib.timeout_add(20, lambda: True)
    try:
        while time.monotonic() < end:
            try:
                answer = condition()
            except Exception:  # an object that is just going or not there yet
                answer = None
            if answer:
                return answer
            context.iteration(True)
    finally:
        GLib.source_remove(timer)
    return fail(f"{what} did not come")


def expect(actual, expected, what):
    if actual != expected:
        fail(f"{what}: {actual!r}, not {expected!r}")


def application(name):
    return next((a for a in pyatspi.Registry.getDesktop(0) if a and a.name == name), None)


def everything(accessible):
    """The object and what is in it, top down; not the rows of lists, of which there may be thousands."""
    yield accessible
    if accessible.getRole() != pyatspi.ROLE_LIST:
        for child in accessible:
            if child:
                yield from everything(child)


def find(accessible, role, name=None):
    """The first one of that role, and of a name that begins so."""
    return next((a for a in everything(accessible)
                 if a.getRole() == role and (name is None or a.name.startswith(name))), None)


def has(accessible, state):
    return accessible.getState().contains(state)
