UPDATE Tracks SET TimesPlayed = 7, Rating1 = 4
UPDATE Albums SET TimesPlayed = 2
