#include <gtest/gtest.h>
#include <ostream>

#include "tests/jet/engine/sample_database.h"

namespace jet::testing {

namespace {

struct Case {
    std::string statement;
    std::string rows;  ///< of the statement, or of `query` after it
    std::string query = "";
};

void PrintTo(const Case& tested, std::ostream* out) {
    *out << tested.statement;
}

class Statements : public ::testing::TestWithParam<Case> {};

TEST_P(Statements, YieldWhatTheyAreExpectedTo) {
    SampleDatabase database;
    const Case& tested = GetParam();
    if (tested.query.empty()) {
        EXPECT_EQ(database.Rows(tested.statement), tested.rows);
        return;
    }
    database.Execute(tested.statement);
    EXPECT_EQ(database.Rows(tested.query), tested.rows);
    database.Close();
    EXPECT_EQ(StructuralFaults(database.Path()), "");
    database.Reopen();
    EXPECT_EQ(database.Rows(tested.query), tested.rows) << "after closing and opening";
}

const Case Queries[] = {
    {"SELECT Max(Albums.CDJID) AS MaxOfCDJID, Left([cdjid],Len([cdjid])-4) AS Expr1 FROM Albums "
     "GROUP BY Left([cdjid],Len([cdjid])-4) HAVING "
     "(((Left([cdjid],Len([cdjid])-4))='252E671073EC'));",
     "252E671073EC0007|252E671073EC"},
    {"SELECT Max(Albums.CDJID) AS MaxOfCDJID, Left([cdjid],Len([cdjid])-4) AS Expr1 FROM Albums "
     "GROUP BY Left([cdjid],Len([cdjid])-4) HAVING (((Left([cdjid],Len([cdjid])-4))='none'));",
     ""},
    {R"(SELECT ID FROM Albums WHERE Title="BLUE" AND Artist="ann" AND Player=1001)", "1"},
    {R"(SELECT ID FROM Albums WHERE Title="Disc" AND Artist="Cid" AND Player=1001)", ""},
    {"SELECT First(Albums.CDJID) AS [CDJID Field], Count(Albums.CDJID) AS NumberOfDups FROM "
     "Albums GROUP BY Albums.CDJID HAVING (((Count(Albums.CDJID))>1))",
     ""},
    {R"(SELECT Tracks.ID FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID  WHERE )"
     R"((((Tracks.SoundFile) Like "%D:\music\ann\blue\100%_[Sea]#1.mp3") AND )"
     R"(((Albums.Player)=1001)))",
     "2"},
    {R"(SELECT Tracks.ID FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID  WHERE )"
     R"((((Tracks.SoundFile) Like "%D:\Music\Ann\Blue\1000_[Sea]#1.mp3") AND )"
     R"(((Albums.Player)=1001)))",
     ""},
    {"SELECT Genre FROM SpinnerGenre WHERE GenreID=17", "Rock"},
    {"SELECT Genre FROM SpinnerGenre WHERE GenreId =18", ""},
    {R"(SELECT GenreId FROM SpinnerGenre WHERE Genre ="blues")", "0"},
    {R"(SELECT CDJID, Tracks FROM Albums WHERE Artist="Bob" AND Title="Red")",
     "252E671073EC0007|0"},
    {R"(SELECT ID FROM SpinnerArtist WHERE Artist="Ann")", "1"},
    {R"(SELECT ID FROM Tracks WHERE SoundFile ="D:\Music\Ann\Blue\SKY.MP3")", "1"},
    {R"(SELECT Tracks.Track, Tracks.Minutes, Tracks.Seconds FROM Albums INNER JOIN Tracks ON )"
     R"(Albums.CDJID = Tracks.CDJID WHERE (((Albums.Artist)="Ann") AND ((Albums.Title)="Blue") )"
     R"(AND ((Tracks.Title)="Sky")))",
     "2|3|5"},
    {R"(SELECT Genre FROM Spinner WHERE ((Artist)="Bob" AND (Album)="Red" AND (Song)="Rose"))",
     "Folk"},
    {"SELECT * FROM SpinnerID3Differences",
     "Null|Genre|Rock|Null|Bob|Red|Rose\nNull|Comment|125|Null|Ann|Blue|Sky"},
    {"SELECT * FROM SpinnerID3Differences ORDER BY Artist",
     "Null|Comment|125|Null|Ann|Blue|Sky\nNull|Genre|Rock|Null|Bob|Red|Rose"},
    {R"(SELECT * FROM SpinnerID3Differences WHERE Artist ="bob" AND Album = "red" AND Track )"
     R"(="ROSE")",
     "Null|Genre|Rock|Null|Bob|Red|Rose"},
    {R"(SELECT Length, Filename FROM Spinner WHERE (((Artist)="Bob") AND ((Album)="Red") AND )"
     R"(((Song)="Rose")))",
     "Null|f"},
    {R"(SELECT Filename FROM Spinner WHERE ((Artist)="Bob" AND (Album)="Red" AND (Song)="Rose"))",
     "f"},
    {R"(SELECT Tracks.Minutes, Tracks.Seconds FROM Albums INNER JOIN Tracks ON Albums.CDJID = )"
     R"(Tracks.CDJID WHERE (((Albums.Artist)="Ann") AND ((Albums.Title)="Blue") AND )"
     R"(((Tracks.Title)="Sea")))",
     "2|0"},
    {R"(SELECT ID FROM Tracks WHERE SoundFile Like"%Ann\Blue\Sky.mp3")", "1"},
    {R"(SELECT ID FROM Tracks WHERE SoundFile Like"%ann\Blue\Ann - Sky.mp3")", ""},
    {"SELECT Spinner.Artist, Spinner.Album, Spinner.Song, Spinner.ID, Spinner.Playcount FROM "
     "Spinner WHERE (((Spinner.Artist) In (SELECT [Artist] FROM [Spinner] As Tmp GROUP BY "
     "[Artist],[Album],[Song] HAVING Count(*)>1  And [Album] = [Spinner].[Album] And [Song] = "
     "[Spinner].[Song]))) ORDER BY Spinner.Artist, Spinner.Album, Spinner.Song",
     "Ann|Blue|Sky|1|2\nann|blue|SKY|2|3"},
    {"SELECT Albums.Artist FROM Albums GROUP BY Albums.Artist", "Ann\nBob\nCid"},
    {R"(SELECT Artist FROM SpinnerArtist WHERE Artist ="Bob")", ""},
    {"SELECT Albums.Artist, Albums.Title as Album, Tracks.Title as Song, Tracks.Minutes, "
     "Tracks.Seconds FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID",
     "Ann|Blue|Sky|3|5\nAnn|Blue|Sea|2|0\nBob|Red|Rose|-1|-1\nBob|Red|Rust|Null|Null\n"
     "Cid|Disc|Disc 1|Null|Null"},
    {R"(SELECT * FROM Spinner WHERE Artist="Bob" AND Album="Red" AND Song="Rose")",
     "3|Bob|Red|Rose|Folk|Null|4|0|f"},
    {R"(SELECT FileName FROM  Spinner  WHERE Artist="Ann")", "x-Rock-y\nx-Jazz-y"},
    {"SELECT * FROM Playlists WHERE AutoGenre = True Or AutoArtist = True",
     R"(1|Null|D:\P\|Ann|pla|False|True)"},
    {"SELECT Spinner.Artist, First(Spinner.Genre)AS FirstGenre FROM Spinner GROUP BY "
     "Spinner.Artist HAVING (((First(Spinner.Genre)) Is Not Null))",
     "Bob|Folk"},
    {R"(SELECT CDJID, Artist, Track, Title FROM Tracks WHERE Artist="Ann")",
     "252E671073EC0001|Ann|2|Sky\n252E671073EC0001|Ann|1|Sea"},
    {R"(SELECT Spinner.Exclude FROM Tracks  INNER JOIN Spinner ON (Tracks.Title = Spinner.Song) )"
     R"(AND (Tracks.Artist = Spinner.Artist) WHERE (((Tracks.Title)="Sky") AND )"
     R"(((Tracks.Artist)="Ann")))",
     "0\n1"},
    {R"(SELECT CDJID, Artist FROM Albums WHERE Artist="Cid")", "A0B1C2|Cid"},
    {R"(SELECT Count(Tracks.ID) AS CountOfID, Tracks.Artist FROM Tracks GROUP BY Tracks.Artist )"
     R"(HAVING (((Tracks.Artist)="ann")))",
     "2|Ann"},
    {"SELECT Track FROM Tracks WHERE cdjid='252E671073EC0001'", "2\n1"},
    {"SELECT Title, Artist, Minutes, Seconds, SoundFile FROM Tracks WHERE "
     "cdjid='252E671073EC0001' AND Track=2",
     R"(Sky|Ann|3|5|D:\Music\Ann\Blue\Sky.mp3)"},
    {R"(SELECT ID, ImageFile FROM Albums WHERE Artist ="Bob" AND Title ="Red")", "2|"},
    {"Select albums.cdjid,albums.title,albums.artist,albums.imagefile,albums.tracks,"
     "albums.minutes,albums.seconds,tracks.track,tracks.title,tracks.minutes,tracks.seconds "
     "From Albums INNER JOIN Tracks on Albums.cdjid=Tracks.cdjid WHERE Albums.Tracks >=2 "
     "order by Albums.artist,Albums.title,tracks.track",
     "252E671073EC0001|Blue|Ann|D:\\c\\Ann - Blue.jpg|2|Null|Null|1|Sea|2|0\n"
     "252E671073EC0001|Blue|Ann|D:\\c\\Ann - Blue.jpg|2|Null|Null|2|Sky|3|5"},
    {"Select count(*) from albums", "3"},
    {R"(SELECT ImageFile FROM Albums WHERE Albums.ImageFile is Not Null and Albums.ImageFile<>"")",
     R"(D:\c\Ann - Blue.jpg)"},
    {R"(SELECT SoundFile FROM Tracks WHERE Tracks.SoundFile is Not Null and Tracks.SoundFile<>"")",
     "D:\\Music\\Ann\\Blue\\Sky.mp3\nD:\\Music\\Ann\\Blue\\100%_[Sea]#1.mp3"},
    {R"(SELECT FilePath FROM Playlists WHERE Playlists.Type ="PLA" AND )"
     R"(Playlists.FilePath is Not Null and Playlists.FilePath<>"")",
     R"(D:\P\)"},
    {"SELECT CDJID, Track FROM Tracks WHERE ID=3", "252E671073EC0007|0"},
};

INSTANTIATE_TEST_SUITE_P(Queries, Statements, ::testing::ValuesIn(Queries));

const Case Changes[] = {
    {"UPDATE Albums SET Albums.Tracks = 0 WHERE (((Albums.Player)=1001))", "0\n0\n1",
     "SELECT Tracks FROM Albums"},
    {R"(DELETE * FROM Albums WHERE CDJID="252E671073EC0001")", "2\n3", "SELECT ID FROM Albums"},
    {R"(DELETE * FROM Tracks WHERE CDJID="252e671073ec0001")", "3\n4\n5", "SELECT ID FROM Tracks"},
    {"UPDATE Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID SET Tracks.Track = 0 WHERE "
     "(((Albums.Player)=1001))",
     "1|0\n2|0\n3|0\n4|0\n5|1", "SELECT ID, Track FROM Tracks"},
    {R"(DELETE Tracks.* FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID WHERE )"
     R"((((Albums.Player)=1001) AND ((Tracks.SoundFile) Is Null)) OR (((Albums.Player)=1001) AND )"
     R"(((Tracks.SoundFile)="")))",
     "1\n2\n5", "SELECT ID FROM Tracks"},
    {"DELETE Tracks.* FROM Tracks INNER JOIN Albums ON Tracks.CDJID = Albums.CDJID WHERE "
     "(((Albums.Player)=1001) AND ((Tracks.Track)=0))",
     "1\n2\n4\n5", "SELECT ID FROM Tracks"},
    {"DELETE * FROM Albums WHERE Tracks=0 and Player=1001", "1\n3", "SELECT ID FROM Albums"},
    {"DELETE * FROM SpinnerID3Differences", "", "SELECT * FROM SpinnerID3Differences"},
    {"INSERT INTO SpinnerGenre SELECT ID, Artist FROM Albums WHERE Player = 1001",
     "0|Blues\n17|Rock\n1|Ann\n2|Bob", "SELECT * FROM SpinnerGenre"},
    {R"(INSERT INTO Albums (Title, NeverPlay, DateAdded) VALUES ("it's ""x""", True, )"
     R"(#11/15/2026 5:38:55 AM#))",
     "4|it's \"x\"|True|#11/15/2026 5:38:55 AM#|Null",
     "SELECT ID, Title, NeverPlay, DateAdded, Artist FROM Albums WHERE ID > 3"},
    {"UPDATE Albums SET Title = Artist & ' - ' & Title, Player = Player + 1 WHERE ID = 1",
     "Ann - Blue|1002", "SELECT Title, Player FROM Albums WHERE ID=1"},
    {"UPDATE Albums SET ImageFile = Null", "Null\nNull\nNull", "SELECT ImageFile FROM Albums"},
};

INSTANTIATE_TEST_SUITE_P(Changes, Statements, ::testing::ValuesIn(Changes));

const Case Expressions[] = {
    {"SELECT TOP 2 ID FROM Tracks ORDER BY ID DESC", "5\n4"},
    {"SELECT DISTINCT Artist FROM Spinner", "Ann\nBob"},
    {"SELECT ID FROM Tracks WHERE Track Between 1 And 2 And Title Not Like 'Disc%'", "1\n2\n4"},
    {"SELECT ID FROM Tracks WHERE Artist In ('ANN', 'Cid') And Not Track=1", "1"},
    {"SELECT ID FROM Tracks WHERE Title Like '%s%k%'", "1"},
    {"SELECT ID FROM Tracks WHERE Title Like 'S%'", "1\n2"},
    {"SELECT IIf(Track>1, 'many', 'one') FROM Tracks WHERE Artist='Ann'", "many\none"},
    {"SELECT Left(Title,2) & Right(Title,1) & Mid(Title,2,1) FROM Tracks WHERE ID=3", "Roeo"},
    {"SELECT LCase(Title), UCase(Title), Len(Title) FROM Tracks WHERE ID=1", "sky|SKY|3"},
    {"SELECT Trim('  a '), InStr('abc', 'C'), Val('12ab'), Int(-2.5), Abs(-3)", "a|3|12|-3|3"},
    {"SELECT 7 / 2, 7 \\ 2, 7 Mod 4, 2 ^ 3, -5 + 2 * 3, 'a' & Null & 1.50", "3.5|3|3|8|1|a1.5"},
    {"SELECT Min(Title), Max(Title), Sum(Track), Avg(Track), Count(*) FROM Tracks",
     "Disc 1|Sky|5|1|5"},
    {"SELECT First(Title), Last(Title) FROM Tracks", "Sky|Disc 1"},
    {"SELECT Sum(Track) FROM Tracks WHERE ID > 99", "Null"},
    {"SELECT (ID > 2) FROM Albums", "False\nFalse\nTrue"},
    {"SELECT ID FROM Albums WHERE NeverPlay = False AND Not NeverPlay", "1\n2\n3"},
    {"SELECT Albums.Title, Tracks.Title FROM Albums LEFT JOIN Tracks ON (Albums.CDJID = "
     "Tracks.CDJID AND Tracks.Track = 2)",
     "Blue|Sky\nRed|Null\nDisc|Null"},
    {"SELECT a.Title FROM Albums AS a, Tracks t WHERE a.CDJID = t.CDJID AND t.ID = 5", "Disc"},
    {"SELECT Title FROM Albums WHERE EXISTS (SELECT * FROM Spinner WHERE Spinner.Artist = "
     "Albums.Artist)",
     "Blue\nRed"},
    {"SELECT Title, (SELECT Count(*) FROM Tracks WHERE Tracks.CDJID = Albums.CDJID) AS n FROM "
     "Albums ORDER BY n DESC, Title",
     "Blue|2\nRed|2\nDisc|1"},
    {"SELECT x.Artist, x.n FROM (SELECT Artist, Count(*) AS n FROM Tracks GROUP BY Artist) AS x "
     "WHERE x.n > 1",
     "Ann|2\nBob|2"},
    {"SELECT Year(#11/15/2026#), Month(#2026-11-15#), #11/15/2026# + 1, CDate('1/2/2026')",
     "2026|11|#11/16/2026#|#1/2/2026#"},
    {"SELECT ID FROM Tracks WHERE SoundFile = Null", ""},
    {"SELECT Artist, Count(*) AS n FROM Tracks GROUP BY Artist ORDER BY Count(*), Artist DESC",
     "Cid|1\nBob|2\nAnn|2"},
};

INSTANTIATE_TEST_SUITE_P(Expressions, Statements, ::testing::ValuesIn(Expressions));

TEST(Amounts, AreReadUpToTheEndsOfTheirType) {
    SampleDatabase database;
    database->Execute("CREATE TABLE Prices (P CURRENCY)");
    for (const char* const amount : {"922337203685477.5807", "-922337203685477.5808"})
        database->Execute("INSERT INTO Prices (P) VALUES ('" + std::string(amount) + "')");
    EXPECT_EQ(database.Rows("SELECT P FROM Prices"), "$9223372036854775807\n$-9223372036854775808");
}

}  // namespace

}  // namespace jet::testing
