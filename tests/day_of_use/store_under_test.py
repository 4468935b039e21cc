"""The store below a Wine prefix: wipes it, fills it through the console host and reads it."""

import contextlib
import json
import os
import shutil
import sqlite3
import subprocess
import tempfile
from pathlib import Path

from row_model import ACTION_LOG, CONTENT_DELETE, REPLAY, Row

FOLDER = Path("drive_c/ProgramData/Corvane Corporation/Tessaly/TslIfDbActionLog")
FILE_OF_TABLE = {
    ACTION_LOG: "ualog.db",
    CONTENT_DELETE: "ualog.db",
    REPLAY: "uareplay.db",
}
COUNTER_FILE = "actionLog.txt"


class StoreError(Exception):
    """The comparison could not be made."""


class StoreUnderTest:
    """Empty when entered and when left."""

    def __init__(self, host_command):
        self._host_command = host_command
        prefix = Path(os.environ.get("WINEPREFIX") or "/nowhere")
        if not (prefix / "drive_c").is_dir():
            raise StoreError("WINEPREFIX names no Wine prefix")
        if os.environ.get("TSL_TEST_STORE_MAY_BE_WIPED") != "1":
            raise StoreError("this deletes the action log; set TSL_TEST_STORE_MAY_BE_WIPED=1")
        self._folder = prefix / FOLDER
        # A prefix may link its folders to those of the user who made it.
        if not self._folder.resolve().is_relative_to(prefix.resolve()):
            raise StoreError(f"{self._folder} leads out of the Wine prefix")

    def __enter__(self):
        self._wipe()
        return self

    def __exit__(self, *_):
        self._wipe()

    def _wipe(self):
        if self._folder.exists():
            shutil.rmtree(self._folder)

    def set_counter(self, last_id):
        text = f"\ufeff{last_id:08}\t\r\n"
        (self._folder / COUNTER_FILE).write_bytes(text.encode("utf-16-le"))

    def record(self, actions):
        with tempfile.TemporaryDirectory() as folder:
            lines = "".join(json.dumps(action, ensure_ascii=False) + "\n" for action in actions)
            Path(folder, "actions.jsonl").write_text(lines, encoding="utf-8")
            # The host is started in the file's folder: a path would differ between its system
            # and this one.
            run = subprocess.run(
                [*self._host_command, "--json", "import", "actions.jsonl"],
                cwd=folder,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                check=False,
            )
        if run.returncode != 0:
            raise StoreError(f"the console host ended with exit code {run.returncode}")
        recorded = json.loads(run.stdout)["recorded"]
        if recorded != len(actions):
            raise StoreError(f"{recorded} of {len(actions)} actions were recorded")

    def read(self):
        return {table: self._read_table(table) for table in FILE_OF_TABLE}

    def _read_table(self, table):
        path = self._folder / FILE_OF_TABLE[table]
        if not path.exists():
            raise StoreError(f"there is no {path.name}")
        with contextlib.closing(sqlite3.connect(path.as_uri() + "?mode=ro", uri=True)) as database:
            # A table is made by the first row that is written to it.
            known = database.execute("SELECT 1 FROM sqlite_master WHERE name = ?", (table,))
            if known.fetchone() is None:
                return []
            rows = database.execute(f"SELECT ActionLogId, UserId, LogKind, ActionName FROM {table}")
            return [Row(*values) for values in rows]
