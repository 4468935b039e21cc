-- An action log of the older form: records of several users without log kinds, and the last
-- record id, 41, in a table of its own.
PRAGMA page_size = 2048;
BEGIN;
CREATE TABLE IF NOT EXISTS TslIf_DbActionLog (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER);
INSERT INTO TslIf_DbActionLog VALUES
    (1,0,5,NULL,1,'startApplication','usValues={7,0,2}&stringValues={JukeRoom,7.0.2}',40973.368056,40973.368064,NULL,NULL,0,NULL),
    (2,0,5,NULL,1,'userLocation','stringValues={DEU,de-DE}',40973.368125,40973.368137,NULL,NULL,0,NULL),
    (3,0,5,NULL,1,'playItem','ullValues={4711}&stringValues={Slow%2fFast%3a%20Suite%20%241}&floatValues={0.850000}',40973.36875,40973.368766,NULL,NULL,0,NULL),
    (4,0,5,NULL,1,'skipForwardItem','ullValues={4712}&usValues={12}',40973.370486,40973.370506,NULL,NULL,0,NULL),
    (5,0,5,NULL,1,'playItem','ullValues={4712,18446744073709551615}&stringValues={Für%20immer%2a%20%28Live%20%40%20Köln%29,}&floatValues={0.500000,1.000000}',40973.370833,40973.370857,NULL,NULL,0,NULL),
    (6,0,5,NULL,1,'pauseItem','ullValues={4712}&boolValues={1}',40973.372222,40973.37225,NULL,NULL,0,NULL),
    (7,0,5,NULL,1,'rateItem','ullValues={4712}&intValues={4}&boolValues={0}',40973.3725,40973.372504,NULL,NULL,0,NULL),
    (8,0,3,'PhotoDesk',2,'startApplication','usValues={7,0,2}&stringValues={PhotoDesk,7.0.2}',40973.416667,40973.416675,NULL,NULL,0,NULL),
    (9,0,3,'PhotoDesk',2,'userLocation','stringValues={JPN,ja-JP}',40973.416806,40973.416818,NULL,NULL,0,NULL),
    (10,0,3,NULL,2,'showItem','ullValues={90}&stringValues={家族旅行%202011.jpg}',40973.417361,40973.417377,NULL,NULL,0,NULL),
    (11,0,3,NULL,2,'showItem','ullValues={91}&stringValues={it%27s%20%22fine%22%20%3creally%3e.jpg}',40973.417708,40973.417728,'showItem','ullValues={90}&stringValues={家族旅行%202011.jpg}',40973,NULL),
    (12,0,3,NULL,2,'editItem','ullValues={91}&stringValues={crop,rotate}&floatValues={-0.407000,1.900000}',40973.418056,40973.41808,NULL,NULL,0,NULL),
    (13,0,3,NULL,2,'createAlbum','ullValues={90,91,1803236541815}&stringValues={Ferien%20%26%20Reisen%2c%20%231}',40973.419444,40973.419472,NULL,NULL,0,NULL),
    (14,0,3,NULL,2,'searchItem','intValues={22}&stringValues={year%3e%3d2009}',40973.420139,40973.420143,NULL,NULL,0,NULL),
    (16,0,3,NULL,2,'deleteItem','ullValues={91,92}&intValues={1,0,9}&boolValues={1}&stringValues={C%3a%5cPhotos%5c2011%5ca.jpg,Best%20of}',40973.421528,40973.42154,NULL,NULL,0,NULL),
    (17,1,3,NULL,2,'showExternalLink','stringValues={https%3a%2f%2fphotos.example%2fa%3fid%3d1%26x%3d2}',40973.422917,40973.422933,NULL,NULL,0,NULL),
    (18,0,3,NULL,2,'exitApplication','intValues={0}',40973.424306,40973.424326,NULL,NULL,0,NULL),
    (19,0,5,NULL,1,'playItem','ullValues={2147483648}&stringValues={Тихий%20вечер}&floatValues={0.380000}',40973.486111,40973.486135,NULL,NULL,0,NULL),
    (20,0,5,NULL,1,'playItem','ullValues={4713}&stringValues={雨の日のワルツ}&floatValues={1.000000}',40973.488917,40973.488917,NULL,NULL,0,NULL),
    (21,0,5,NULL,1,'createPlaylist','stringValues={Ski,Morning%2c%20Again}',40973.490278,40973.490282,NULL,NULL,0,NULL),
    (22,0,5,NULL,1,'tweet','stringValues={100%25%20%5bfun%5d%3b%20%7e2%20h%20%2b%20tea%20%3d%20%7bgood%7d%20%7c%20%60ok%60%3f}',40973.490972,40973.49098,NULL,NULL,0,NULL),
    (23,0,5,NULL,1,'registerFavoriteTweet','ullValues={5550001}',40973.491389,40973.491401,NULL,NULL,0,NULL),
    (24,0,5,NULL,1,'exitApplication','intValues={0}',40973.5,40973.500016,NULL,NULL,0,NULL),
    (25,0,8,NULL,3,'startApplication','usValues={1,12,0}&stringValues={Living%5eTV,1.12}',40973.763889,40973.763909,NULL,NULL,0,NULL),
    (26,0,8,NULL,3,'userLocation','stringValues={JPN}',40973.763958,40973.763982,NULL,NULL,0,NULL),
    (27,0,8,NULL,3,'UserLocation','stringValues={FRA,fr-FR}',40973.764097,40973.764125,NULL,NULL,0,NULL),
    (28,0,8,NULL,3,'externalApplicationLog','usValues={8045}&stringValues={printer,paper%20jam%3f%20tray%3d2}',40973.765972,40973.765976,NULL,NULL,0,NULL),
    (29,0,8,NULL,3,'showExternalLinkForTv','stringValues={https%3a%2f%2ftv.example%2fnow%23live}',40973.767361,40973.767369,NULL,NULL,0,NULL),
    (30,0,8,NULL,3,'playItem','ullValues={0}&stringValues={Nachrichten%2020%3a00}',40973.770833,40973.770845,NULL,NULL,0,NULL),
    (32,0,8,NULL,3,'userLocation','',40973.791667,40973.791687,NULL,NULL,0,NULL),
    (33,0,8,NULL,3,'exitApplication','intValues={-1}',40973.798611,40973.798635,NULL,NULL,0,NULL),
    (34,0,3,NULL,7,'startApplication','usValues={7,0,2}&stringValues={PhotoDesk,7.0.2}',40973.902778,40973.902806,NULL,NULL,0,NULL),
    (35,0,3,NULL,7,'userLocation','stringValues={FRA,fr-FR}',40973.902847,40973.902851,NULL,NULL,0,NULL),
    (36,0,3,NULL,7,'showItem','ullValues={12}&stringValues={Été%20à%20Nîmes.png}',40973.903472,40973.90348,NULL,NULL,0,NULL),
    (37,0,3,NULL,7,'viaMoveContent','stringValues={Albums%2fÉté,a.png,Archive%2f2011,b.png}',40973.904167,40973.904179,NULL,NULL,0,NULL),
    (38,0,3,NULL,7,'autoDeleteItem','ullValues={12}&intValues={2,0,7}&stringValues={50%25%20off%21.png}',40973.904877,40973.904877,NULL,NULL,0,NULL),
    (39,0,3,NULL,7,'veSettingReset','',40973.905556,40973.905576,NULL,NULL,0,NULL),
    (40,0,-1,NULL,4294967295,'showItem','ullValues={13}&stringValues={💛🌻.heic}',40973.90625,40973.906274,NULL,NULL,0,NULL),
    (41,0,3,NULL,7,'exitApplication','intValues={0}',40973.906944,40973.906972,NULL,NULL,0,NULL);
CREATE TABLE IF NOT EXISTS TslIf_ActionRecordId (CurrentRecordId INTEGER,ActionLogId INTEGER);
INSERT INTO TslIf_ActionRecordId VALUES (1,41);
COMMIT;
