-- Records without log kinds, but no table of the last record id.
PRAGMA page_size = 2048;
BEGIN;
CREATE TABLE IF NOT EXISTS TslIf_DbActionLog (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER);
INSERT INTO TslIf_DbActionLog VALUES
    (1,0,5,NULL,1,'startApplication','usValues={7,0,2}&stringValues={JukeRoom,7.0.2}',40973.368056,40973.368064,NULL,NULL,0,NULL),
    (2,0,5,NULL,1,'userLocation','stringValues={DEU,de-DE}',40973.368125,40973.368137,NULL,NULL,0,NULL),
    (3,0,5,NULL,1,'playItem','ullValues={4711}&stringValues={Slow%2fFast%3a%20Suite%20%241}&floatValues={0.850000}',40973.36875,40973.368766,NULL,NULL,0,NULL),
    (5,0,3,NULL,2,'userLocation','stringValues={JPN,ja-JP}',40973.416806,40973.41683,NULL,NULL,0,NULL),
    (6,0,3,NULL,2,'showItem','ullValues={90}&stringValues={家族旅行%202011.jpg}',40973.417361,40973.417389,NULL,NULL,0,NULL),
    (7,0,3,NULL,2,'exitApplication','intValues={0}',40973.424306,40973.42431,NULL,NULL,0,NULL);
COMMIT;
