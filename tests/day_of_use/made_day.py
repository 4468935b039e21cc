"""A day of actions drawn by chance, with every special name, few users and every log kind.

User 1 does nearly all of it, so that the replay table becomes full for that user. In the middle of
the day the record-id counter goes back, as it does when an old copy of its file is put back, and
ids are given out a second time.
"""

import random

from row_model import CONTENT_MOVE_NAME, DELETE_NAMES, NAMES_OUTSIDE_ACTION_LOG, RESET_NAME

ACTIONS_BEFORE_RESTORE = 850
ACTIONS_AFTER_RESTORE = 650
RESTORED_COUNTER = 790

KINDS = {1: 45, 2: 13, 3: 6, 4: 6, 8: 15, 16: 15}
USERS = {1: 93, 2: 3, 0: 2, 4294967295: 2}
USERS_OF_RESETS = {1: 70, 2: 5, 0: 20, 4294967295: 5}

ORDINARY_NAMES = ("showItem", "pauseItem", "userLocation", "externalApplicationLog", "Übersicht")
# Not the name that it looks like: the last letter is the Kelvin sign.
LOOKALIKE_NAME = "showExternalLin\u212a"
RESET_CHANCE = 0.015
CASE_VARIANT_CHANCE = 0.3

TEXTS = ("", "a,b", "100%", "{x}=&y", "Köln", "誕生日", "JPN")


def special_names():
    names = {name for names in NAMES_OUTSIDE_ACTION_LOG.values() for name in names}
    return sorted(names | set(DELETE_NAMES) | {CONTENT_MOVE_NAME})


def pick(chance, weights):
    return chance.choices(list(weights), list(weights.values()))[0]


def case_variant(chance, name):
    """One letter at least changes its case."""
    letters = [i for i, c in enumerate(name) if c.isascii() and c.isalpha()]
    flipped = set(chance.sample(letters, chance.randint(1, len(letters))))
    return "".join(c.swapcase() if i in flipped else c for i, c in enumerate(name))


def draw_name(chance, reset):
    names = special_names() * 2 + [*ORDINARY_NAMES, LOOKALIKE_NAME]
    name = RESET_NAME if reset else chance.choice(names)
    return case_variant(chance, name) if chance.random() < CASE_VARIANT_CHANCE else name


def draw_values(chance):
    def some(draw):
        return [draw() for _ in range(chance.randint(0, 3))]

    lists = {
        "ullValues": some(lambda: chance.getrandbits(64)),
        "usValues": some(lambda: chance.getrandbits(16)),
        "intValues": some(lambda: chance.randint(-(2**31), 2**31 - 1)),
        "boolValues": some(lambda: chance.random() < 0.5),
        "stringValues": some(lambda: chance.choice(TEXTS)),
        "moreStringValues": some(lambda: chance.choice(TEXTS)),
        "floatValues": some(lambda: chance.uniform(-1000, 1000)),
    }
    return {name: values for name, values in lists.items() if chance.random() < 0.3}


def draw_action(chance):
    reset = chance.random() < RESET_CHANCE
    action = {
        "name": draw_name(chance, reset),
        "app": chance.randint(-2, 9),
        "user": pick(chance, USERS_OF_RESETS if reset else USERS),
        "kind": pick(chance, KINDS),
    }
    if chance.random() < 0.5:
        action["time"] = f"2026-11-20T{chance.randint(0, 23):02}:{chance.randint(0, 59):02}:00Z"
    if action["name"] == CONTENT_MOVE_NAME:
        action |= {"number": 7, "stringValues": ["a", "b"], "moreStringValues": ["c", "d"]}
        return action
    return action | draw_values(chance)


def draw_day(seed):
    """Pairs of the counter that a part of the day starts with and the actions of that part."""
    chance = random.Random(seed)
    before = [draw_action(chance) for _ in range(ACTIONS_BEFORE_RESTORE)]
    after = [draw_action(chance) for _ in range(ACTIONS_AFTER_RESTORE)]
    return [(0, before), (RESTORED_COUNTER, after)]
