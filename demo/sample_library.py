"""A made-up music collection: nobody of this name has ever recorded these songs."""

import os

import sound_files

# Artist -> album -> songs in their order on the album.
COLLECTION = {
    "Ölvindr Skógur": {
        "Kvöld við Ána": ["Þoka", "Ísabrot", "Vængjaþytur", "Morgunn"],
        "Ár": ["Janúar", "Apríl", "Júlí", "Október"],
        "Ljós & Leðja": ["Fyrsta Ljós", "Leðja", "Síðasta Ljós"],
    },
    "The Papier-Mâché Owls": {
        "Don't Feed the Lighthouse": ["Don't", "Feed", "The Lighthouse", "Encore!", "Don't (again)"],
        "Two Left Wings": ["Left", "Also Left", "Right, No"],
        "Hoot, Hoot & Hoot": ["Hoot", "Hoot, Hoot", "& Hoot"],
    },
    "D'Arcy & the Half-Moons": {
        "Crescent": ["New", "Waxing", "First Quarter", "Gibbous"],
        "Other Halves": ["Mine", "Yours", "Nobody's"],
        "100% Moonlight": ["1%", "50%", "99.9%", "100%"],
    },
    "#9 Lantern": {
        "[Untitled]": ["[1]", "[2]", "[3]", "[4]", "[5]"],
        "Wick #2": ["Trim", "Burn", "Out"],
    },
    "Los Ñandúes del Frío": {
        "Pájaro sin Avión": ["Despegue", "Corazón de Pingüino", "El Último Año"],
        "Mañana, mañana": ["Hoy no", "Mañana", "Mañana tampoco", "Nunca"],
    },
    "Žofie Dvořiště": {
        "Písně o Dešti": ["Kapka", "Přeháňka", "Liják", "Duha"],
        "Řeka": ["Pramen", "Meandr", "Delta"],
    },
    "Marble Foxes": {
        "Slow Quarry": ["Chisel", "Dust", "Vein", "Polish"],
        "A Cold Statue": ["Plinth", "Pigeon", "Pedestal"],
        "Live at the Stone Yard": ["Chisel (live)", "Dust (live)", "Thank you, Stone Yard"],
    },
    "Velvet Tugboat 7": {
        "Harbour Gossip": ["Mooring", "Knots + Bollards", "Fog=Horn", "Low Tide"],
        "Pull": ["Tow", "Drag", "Nudge"],
        "Ballast": ["Sand", "Water", "Cargo of Nothing", "Keel"],
    },
    "Grandmother's Radio": {
        "Long Wave; Short Wave": ["Static", "Weather for Ships", "The Time Is"],
        "Dial": ["88", "92,5", "104.1", "Off"],
    },
    "Émile Brouillard-Lacombe et son Orchestre de Poche": {
        "Valses pour un très petit salon avec une très grande fenêtre":
            ["Valse à l'envers", "La fenêtre", "Une très longue valse dont le titre ne tient pas "
             "dans une étiquette de trente lettres", "Fin"],
        "L'Été": ["Août", "Où", "Çà et là"],
    },
}

# Albums that were copied to the disk in another order than that of their songs: the numbers of
# the tags and the order of the file times differ.
COPIED_BACKWARDS = {"Crescent", "Harbour Gossip"}

FIRST_TIME = 1546300800
HOUR = 3600


def song_file(number, title):
    return f"{number:02} - {title}.mp3"


def make(root):
    """Writes all files below `root`; how many artists, albums and songs there are."""
    albums = songs = 0
    for artist, records in COLLECTION.items():
        for album, titles in records.items():
            albums += 1
            for number, title in enumerate(titles, 1):
                songs += 1
                place = len(titles) - number if album in COPIED_BACKWARDS else number
                tag = sound_files.tag(title, artist, album, str(1990 + albums),
                                      f"Length='{90 + 17 * number}'", number, albums % 80)
                path = os.path.join(root, artist, album, song_file(number, title))
                sound_files.write(path, sound_files.silence(1 + number % 3) + tag,
                                  FIRST_TIME + (albums * 100 + place) * HOUR)
    return len(COLLECTION), albums, songs
