#!/usr/bin/env python3
"""Writes the planet data files of resources/:

Planet.dat: the mean elements of the eight planets from tools/planet_mean_elements_1900.csv
(Mercury to Pluto, T in Julian centuries from 1900 January 0.5). Per planet a name line, then
lines of 4, 4, 4, 4, 4 and 3 numbers separated by commas: mean longitude A, B (revolutions per
century), C, D; longitude of perihelion, eccentricity, inclination and node as
A + B T + C T^2 + D T^3; semi-major axis (AU), angular diameter at 1 AU (arc seconds),
magnitude at 1 AU. The numbers are written as the table writes them.

planets.dat and planets.ndx: the Earth's heliocentric series (ecliptic and equinox J2000.0) from
the kstars-data files earth.L0.vsop ... earth.R5.vsop, keeping the terms with |A| >= 2.4e-10
(2,421 of 2,564; the program holds 2,430). planets.dat: one 24-byte record per term A cos(B + C
tau), three little-endian doubles, block by block L0..L5, B0..B5, R0..R5. planets.ndx: 4-byte
records of two little-endian 16-bit integers (the block's first record, counted from 0, and its
term count), 18 per planet; the Earth is planet 0 and the records of planets 1 to 8 are zero.

Run from the repository root: python3 tools/make_planet_files.py
With --check nothing is written: the exit status says whether resources/ holds what the sources
give.
"""

import argparse
import csv
import pathlib
import struct
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ELEMENTS = ROOT / "tools" / "planet_mean_elements_1900.csv"
KSTARS = pathlib.Path("/usr/share/kstars")
PLANETS = ["Mercury", "Venus", "Mars", "Jupiter", "Saturn", "Uranus", "Neptune", "Pluto"]
LINES = [4, 4, 4, 4, 4, 3]  # numbers per line after the name
MIN_AMPLITUDE = 2.4e-10
INDEX_PLANETS = 9
BLOCKS = [(c, k) for c in "LBR" for k in range(6)]


def planet_dat(elements):
    with open(elements, newline="", encoding="ascii") as f:
        rows = list(csv.reader(f))
    header, rows = rows[0], rows[1:]
    if [r[0] for r in rows] != PLANETS or any(len(r) != 1 + sum(LINES) for r in rows):
        sys.exit(f"{elements}: not the eight planets with {sum(LINES)} numbers each")
    if len(header) != 1 + sum(LINES):
        sys.exit(f"{elements}: unexpected header")
    out = []
    for row in rows:
        out.append(row[0])
        numbers = row[1:]
        for n in LINES:
            for text in numbers[:n]:
                float(text)  # every field must be a number
            out.append(",".join(numbers[:n]))
            numbers = numbers[n:]
    return "".join(line + "\n" for line in out).encode("ascii")


def vsop_terms(kstars):
    blocks = []
    for coordinate, power in BLOCKS:
        path = kstars / f"earth.{coordinate}{power}.vsop"
        terms = []
        for line in path.read_text(encoding="ascii").splitlines():
            fields = line.split()
            if not fields:
                continue
            a, b, c = (float(x) for x in fields)
            if abs(a) >= MIN_AMPLITUDE:
                terms.append((a, b, c))
        blocks.append(terms)
    return blocks


def planets_files(kstars):
    blocks = vsop_terms(kstars)
    data = bytearray()
    index = bytearray()
    first = 0
    for terms in blocks:
        index += struct.pack("<hh", first, len(terms))
        for term in terms:
            data += struct.pack("<3d", *term)
        first += len(terms)
    index += bytes(4 * 18 * (INDEX_PLANETS - 1))
    return bytes(data), bytes(index), first


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--elements", type=pathlib.Path, default=ELEMENTS)
    parser.add_argument("--kstars", type=pathlib.Path, default=KSTARS)
    parser.add_argument("--out", type=pathlib.Path, default=ROOT / "resources")
    parser.add_argument("--check", action="store_true",
                        help="compare with the files in --out instead of writing them")
    args = parser.parse_args()

    data, index, count = planets_files(args.kstars)
    if count != 2421:
        sys.exit(f"{count} terms kept, expected 2421")
    files = {"Planet.dat": planet_dat(args.elements), "planets.dat": data, "planets.ndx": index}
    if args.check:
        differ = [n for n, content in files.items()
                  if not (args.out / n).is_file() or (args.out / n).read_bytes() != content]
        for name in differ:
            print(f"{args.out / name} differs from what the sources give", file=sys.stderr)
        sys.exit(1 if differ else 0)
    for name, content in files.items():
        (args.out / name).write_bytes(content)


if __name__ == "__main__":
    main()
