-- All records were deleted; the last record id, 41, was kept.
PRAGMA page_size = 2048;
BEGIN;
CREATE TABLE IF NOT EXISTS TslIf_DbActionLog (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER);
CREATE TABLE IF NOT EXISTS TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER);
INSERT INTO TslIf_ActionRecordId VALUES (1,41);
COMMIT;
