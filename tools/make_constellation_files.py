#!/usr/bin/env python3
"""Writes resources/con9.txt and resources/conbound.txt from the boundary table
resources/constellation_data_roman87.dat (equinox 1875.0, in the published row order).

con9.txt: the 88 IAU names in ASCII, one a line, in alphabetical order. The letters of each
IAU abbreviation are written in capitals, in order, all others small, so that taking a name's
capitals gives the abbreviation back (the first letter as it is, the later ones small):
"ANDromeda" gives And, "Canes VeNatici" Cvn. A capital of the abbreviation marks the start
of a word where one begins with that letter ("PiScis Austrinus", "TRiangulum Australe");
small letters take the next match. Hydrus and Sagitta lack a letter of their abbreviations
(Hyi, Sge) and mark only what they have ("HYdrus", "SaGitta").

conbound.txt: one record a line, "raLow raHigh decLow n", the numbers as the table writes
them and n the line of con9.txt that names the row's constellation.

Run from the repository root: python3 tools/make_constellation_files.py
"""

import pathlib
import sys

NAMES = {
    "And": "Andromeda", "Ant": "Antlia", "Aps": "Apus", "Aqr": "Aquarius", "Aql": "Aquila",
    "Ara": "Ara", "Ari": "Aries", "Aur": "Auriga", "Boo": "Bootes", "Cae": "Caelum",
    "Cam": "Camelopardalis", "Cnc": "Cancer", "CVn": "Canes Venatici", "CMa": "Canis Major",
    "CMi": "Canis Minor", "Cap": "Capricornus", "Car": "Carina", "Cas": "Cassiopeia",
    "Cen": "Centaurus", "Cep": "Cepheus", "Cet": "Cetus", "Cha": "Chamaeleon",
    "Cir": "Circinus", "Col": "Columba", "Com": "Coma Berenices", "CrA": "Corona Australis",
    "CrB": "Corona Borealis", "Crv": "Corvus", "Crt": "Crater", "Cru": "Crux",
    "Cyg": "Cygnus", "Del": "Delphinus", "Dor": "Dorado", "Dra": "Draco", "Equ": "Equuleus",
    "Eri": "Eridanus", "For": "Fornax", "Gem": "Gemini", "Gru": "Grus", "Her": "Hercules",
    "Hor": "Horologium", "Hya": "Hydra", "Hyi": "Hydrus", "Ind": "Indus", "Lac": "Lacerta",
    "Leo": "Leo", "LMi": "Leo Minor", "Lep": "Lepus", "Lib": "Libra", "Lup": "Lupus",
    "Lyn": "Lynx", "Lyr": "Lyra", "Men": "Mensa", "Mic": "Microscopium", "Mon": "Monoceros",
    "Mus": "Musca", "Nor": "Norma", "Oct": "Octans", "Oph": "Ophiuchus", "Ori": "Orion",
    "Pav": "Pavo", "Peg": "Pegasus", "Per": "Perseus", "Phe": "Phoenix", "Pic": "Pictor",
    "Psc": "Pisces", "PsA": "Piscis Austrinus", "Pup": "Puppis", "Pyx": "Pyxis",
    "Ret": "Reticulum", "Sge": "Sagitta", "Sgr": "Sagittarius", "Sco": "Scorpius",
    "Scl": "Sculptor", "Sct": "Scutum", "Ser": "Serpens", "Sex": "Sextans", "Tau": "Taurus",
    "Tel": "Telescopium", "Tri": "Triangulum", "TrA": "Triangulum Australe", "Tuc": "Tucana",
    "UMa": "Ursa Major", "UMi": "Ursa Minor", "Vel": "Vela", "Vir": "Virgo", "Vol": "Volans",
    "Vul": "Vulpecula",
}


def marked(name, abbreviation):
    """The name in small letters with the abbreviation's letters in capitals."""
    chars = list(name.lower())
    pos = 0
    for i, letter in enumerate(abbreviation):
        want = letter.lower()
        found = -1
        if i > 0 and letter.isupper():
            found = next((k for k in range(pos, len(chars))
                          if chars[k] == want and (k == 0 or chars[k - 1] == " ")), -1)
        if found < 0:
            found = next((k for k in range(pos, len(chars)) if chars[k] == want), -1)
        if found < 0:
            continue  # Hydrus, Sagitta: the name lacks the letter
        chars[found] = chars[found].upper()
        pos = found + 1
    return "".join(chars)


def rule(name):
    """The abbreviation taken back from a name's capitals."""
    taken = [c for c in name if c != " " and c == c.upper()]
    return "".join(taken[:1] + [c.lower() for c in taken[1:]])


def main():
    root = pathlib.Path(__file__).resolve().parent.parent / "resources"
    rows = [line.split() for line in (root / "constellation_data_roman87.dat").read_text()
            .splitlines() if line.strip() and not line.startswith("#")]
    if len(rows) != 357 or len(NAMES) != 88:
        sys.exit("unexpected table size")
    order = sorted(NAMES, key=lambda a: NAMES[a])
    lines = [marked(NAMES[a], a) for a in order]
    for abbreviation, line in zip(order, lines):
        expected = abbreviation[0] + abbreviation[1:].lower()
        if abbreviation in ("Hyi", "Sge"):
            expected = expected[:2]
        if rule(line) != expected or line.lower() != NAMES[abbreviation].lower():
            sys.exit(f"{line}: rule gives {rule(line)}, not {expected}")
    number = {a: i + 1 for i, a in enumerate(order)}
    (root / "con9.txt").write_text("".join(line + "\n" for line in lines), encoding="ascii")
    (root / "conbound.txt").write_text(
        "".join(f"{lo} {hi} {dec} {number[a]}\n" for lo, hi, dec, a in rows), encoding="ascii")


if __name__ == "__main__":
    main()
