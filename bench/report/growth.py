"""How figures grow with a quantity, such as the number of registered keys."""
import re

from comparison import ordered
from results import Failure, group_of

# Known quantities in the order of the report, with the labels of their axes.
QUANTITIES = {
    "registered keys": "registered keys",
    "devices": "devices",
    "records per read": "records per read",
    "keys held": "keys held",
}


def growths(results):
    """By quantity, then by (subject, figure, unit): the figures by value of the quantity."""
    quantities = {}
    for key, figure in group_of(results, "growth").items():
        name, _, value = key.parameter.partition("=")
        if not re.fullmatch("[0-9]+", value):
            raise Failure(f"parameter '{key.parameter}' of '{key.subject}' is not QUANTITY=NUMBER")
        subject = ", ".join(text for text in (
            key.subject, key.stream, key.burst and f"{key.burst} records per burst") if text)
        series = quantities.setdefault(name, {}).setdefault((subject, key.figure, figure.unit), {})
        series[int(value)] = figure
    return {name: quantities[name] for name in ordered(quantities, list(QUANTITIES))}


def picture_of(quantity):
    return "growth-" + re.sub("[^a-z0-9]+", "-", quantity.lower())
