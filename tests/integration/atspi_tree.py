#!/usr/bin/python3
"""Prints the accessibility tree of one application as JSON, one object per line:
depth, role, name, description, screen extents, states and, for text and value
widgets, their content. Run with AT_SPI_BUS_ADDRESS set to the test's accessibility bus."""
import json
import sys

import pyatspi


def states_of(node):
    states = node.getState()
    names = []
    for state, name in ((pyatspi.STATE_SHOWING, "showing"), (pyatspi.STATE_CHECKED, "checked"),
                        (pyatspi.STATE_SELECTED, "selected"), (pyatspi.STATE_FOCUSED, "focused"),
                        (pyatspi.STATE_ENABLED, "enabled"), (pyatspi.STATE_ACTIVE, "active")):
        if states.contains(state):
            names.append(name)
    return names


def text_of(node):
    try:
        text = node.queryText()
        return text.getText(0, text.characterCount)
    except NotImplementedError:
        return None


def walk(node, depth, out):
    try:
        extents = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        box = [extents.x, extents.y, extents.width, extents.height]
    except NotImplementedError:
        box = None
    out.write(json.dumps({"depth": depth, "role": node.getRoleName(), "name": node.name,
                          "description": node.description, "extents": box,
                          "states": states_of(node), "text": text_of(node)}) + "\n")
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            walk(child, depth + 1, out)


def main():
    wanted = sys.argv[1].lower()
    desktop = pyatspi.Registry.getDesktop(0)
    for index in range(desktop.childCount):
        application = desktop.getChildAtIndex(index)
        if application is not None and application.name.lower() == wanted:
            walk(application, 0, sys.stdout)
            return 0
    return 1


if __name__ == "__main__":
    sys.exit(main())
