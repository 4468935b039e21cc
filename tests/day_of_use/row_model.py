"""Which rows are left in the three tables after actions were recorded one after the other.

A second, slow and simple statement of the rules, to compare the component's store with. It knows a
row by its record id, user, log kind and action name, and nothing about texts, times or files.

Every action is taken to come from a host that hands in a record id, a name, a user and value lists
of the right types, so that no row is dropped for the lack of one of them.
"""

from typing import NamedTuple

ACTION_LOG = "TslIf_DbActionLog"
CONTENT_DELETE = "TslIf_ContentDeleteProperty"
REPLAY = "TslIf_ActionReplay"
TABLES = (ACTION_LOG, CONTENT_DELETE, REPLAY)

# Each can be switched off, to see that a comparison notices it.
RULES = (
    "log-kind-filter",  # some names stay out of the action log, which ones depends on the kind
    "names-ignore-case",  # A to Z only
    "delete-road",  # a deleted item of kind 1 goes to the content-delete table as well
    "content-move",  # a content move stays out of the action log
    "content-move-exact-case",  # its name is the only one that is compared exactly
    "user-reset",  # a reset removes what the action log holds of the user ...
    "reset-spares-others",  # ... and not what it holds of the other users
    "reset-by-kind",  # ... and only the rows of the kind that it is recorded under
    "reset-needs-user",  # ... but nothing for user 0
    "reset-is-recorded",  # the reset itself gets its row
    "replay-trim",  # a user with too many replay rows is reset there, too
    "trim-at-hundreds",  # ... but looked at only when the record id is a multiple of 100
    "trim-counts-all-kinds",  # ... where every kind counts, though one kind goes
    "trim-before-row",  # ... and before the row of the action itself is there
    "one-row-per-id",  # a record id given out again replaces its older row in a table
)

DELETE_NAMES = ("deleteItem", "autoDeleteItem")
DELETE_ROAD_KIND = 1
CONTENT_MOVE_NAME = "viaMoveContent"
RESET_NAME = "veSettingReset"

NAMES_OUTSIDE_ACTION_LOG = {
    1: ("showExternalLinkForTv", "showExternalLink"),
    2: ("showExternalLinkForMusic", "showExternalLink"),
    8: ("playItem", "skipForwardItem"),
    16: ("showExternalLinkForSns", "showExternalLink", "registerFavoriteTweet", "tweet"),
}

MOST_REPLAY_ROWS = 999
TRIM_STEP = 100

DEFAULT_KIND = 1


class Row(NamedTuple):
    record_id: int
    user: int
    kind: int
    name: str


def ascii_lower(text):
    """Lower case of A to Z only: no other letter is the same as an ASCII one."""
    return "".join(chr(ord(c) + 32) if "A" <= c <= "Z" else c for c in text)


class RowModel:
    """The tables as lists of rows. Actions are dicts as a line of an import file holds them."""

    def __init__(self, without=None):
        assert without is None or without in RULES, without
        self._without = without
        self.tables = {table: [] for table in TABLES}

    def record(self, record_id, action):
        row = Row(record_id, action["user"], action.get("kind", DEFAULT_KIND), action["name"])
        reset = self._is_one_of(row.name, (RESET_NAME,))
        if reset and self._holds("user-reset"):
            self._remove_user(ACTION_LOG, row)
        self._write_to_action_log(row, reset)
        self._write_to_replay(row)

    def _write_to_action_log(self, row, reset):
        if row.kind == DELETE_ROAD_KIND and self._is_one_of(row.name, DELETE_NAMES):
            if self._holds("delete-road"):
                self._write(CONTENT_DELETE, row)
            self._write(ACTION_LOG, row)
        elif self._is_content_move(row.name):
            pass
        elif reset and not self._holds("reset-is-recorded"):
            pass
        elif not self._is_kept_out(row):
            self._write(ACTION_LOG, row)

    def _write_to_replay(self, row):
        if not self._holds("trim-before-row"):
            self._write(REPLAY, row)
        if self._is_trim_due(row):
            self._remove_user(REPLAY, row)
        if self._holds("trim-before-row"):
            self._write(REPLAY, row)

    def _is_trim_due(self, row):
        if not self._holds("replay-trim"):
            return False
        if self._holds("trim-at-hundreds") and row.record_id % TRIM_STEP != 0:
            return False
        any_kind = self._holds("trim-counts-all-kinds")
        of_user = [
            other
            for other in self.tables[REPLAY]
            if other.user == row.user and (any_kind or other.kind == row.kind)
        ]
        return len(of_user) > MOST_REPLAY_ROWS

    def _remove_user(self, table, row):
        if row.user == 0 and self._holds("reset-needs-user"):
            return
        any_user = not self._holds("reset-spares-others")
        any_kind = not self._holds("reset-by-kind")
        self.tables[table] = [
            other
            for other in self.tables[table]
            if not (any_user or other.user == row.user) or not (any_kind or other.kind == row.kind)
        ]

    def _write(self, table, row):
        rows = self.tables[table]
        if self._holds("one-row-per-id"):
            rows = [other for other in rows if other.record_id != row.record_id]
        self.tables[table] = rows + [row]

    def _is_kept_out(self, row):
        return self._holds("log-kind-filter") and self._is_one_of(
            row.name, NAMES_OUTSIDE_ACTION_LOG.get(row.kind, ())
        )

    def _is_content_move(self, name):
        if not self._holds("content-move"):
            return False
        if not self._holds("content-move-exact-case"):
            return self._is_one_of(name, (CONTENT_MOVE_NAME,))
        return name == CONTENT_MOVE_NAME

    def _is_one_of(self, name, names):
        if not self._holds("names-ignore-case"):
            return name in names
        return ascii_lower(name) in [ascii_lower(other) for other in names]

    def _holds(self, rule):
        return rule != self._without
