INSERT INTO Albums (CDJID, Title, Artist, Player, ImageFile) VALUES ("3A0B1C0D", "Side A", "The Discs", 1, "D:\Covers\The Discs - Side A.jpg")
