-- The last record id is the highest that there is.
PRAGMA page_size = 2048;
BEGIN;
CREATE TABLE IF NOT EXISTS TslIf_DbActionLog (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER);
INSERT INTO TslIf_DbActionLog VALUES
    (4294967294,0,5,NULL,1,'playItem','ullValues={4711}&stringValues={Slow%2fFast%3a%20Suite%20%241}&floatValues={0.850000}',40973.36875,40973.368762,NULL,NULL,0,NULL),
    (4294967295,0,5,NULL,1,'userLocation','stringValues={DEU,de-DE}',40973.369444,40973.36946,NULL,NULL,0,NULL);
CREATE TABLE IF NOT EXISTS TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER);
INSERT INTO TslIf_ActionRecordId VALUES (1,4294967295);
COMMIT;
