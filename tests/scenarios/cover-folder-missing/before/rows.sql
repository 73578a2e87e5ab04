INSERT INTO Albums (CDJID, Title, Artist, Player, ImageFile) VALUES ("3A0B1C0D", "Side A", "The Discs", 1, "D:\Away\Covers\The Discs - Side A.jpg")
INSERT INTO Albums (CDJID, Title, Artist, Player, ImageFile) VALUES ("3A0B1C0E", "Side B", "The Discs", 1, "D:\Away\Covers\The Discs - Side B.jpg")
