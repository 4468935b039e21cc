-- The last record id, 41, without any table of records.
PRAGMA page_size = 2048;
BEGIN;
CREATE TABLE IF NOT EXISTS TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER);
INSERT INTO TslIf_ActionRecordId VALUES (1,41);
COMMIT;
