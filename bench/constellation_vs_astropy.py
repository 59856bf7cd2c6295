#!/usr/bin/python3
"""selvane-cli's constellation lookup against astropy's get_constellation.

Draws random positions uniformly on the sphere (fixed seed), labels them with
`selvane-cli constellation -` (equinox J2000) in a fresh program folder, timing the run, and with
astropy's get_constellation on the same positions as ICRS coordinates. Prints how many agree
and, for each difference:
  - sep: the angle between the two programs' positions at the boundaries' equinox 1875.0 (this
    program's own precession, recomputed here with the same arithmetic, against astropy's
    transformation to PrecessedGeocentric(equinox="B1875"), which get_constellation uses and
    which includes the annual aberration of a geocentric frame, up to about 20");
  - edge: the distance from this program's 1875.0 position to the nearest point where the
    boundary table's answer changes, found by stepping outwards on 360 rays from the position
    (0.05" resolution).
A difference is explained by the precessions when edge <= sep.

Needs Debian's python3-astropy (run with /usr/bin/python3) and a built selvane-cli.
Usage: bench/constellation_vs_astropy.py [--cli build/bin/selvane-cli] [--count 10000]
"""

import argparse
import math
import pathlib
import random
import subprocess
import sys
import tempfile
import time
import warnings

import numpy as np
from astropy import units as u
from astropy.coordinates import FK5, PrecessedGeocentric, SkyCoord, get_constellation

ROOT = pathlib.Path(__file__).resolve().parent.parent
F = 0.01745329  # the lookup's own radian factor


def precess(alpha, delta, e0, e1=1875.0):
    """The lookup's precession, operation for operation (hours and degrees)."""
    t = (e1 - e0) / 100
    zeta = (2305.65 * t + 0.302 * t * t + 0.018 * t * t * t) / 3600 * F
    z = (2305.65 * t + 0.302 * t * t + 0.018 * t * t * t + 0.791 * t * t) / 3600
    theta = (2003.829 - 0.4260001 * t - 0.04200001 * t * t) * t / 3600 * F
    a0 = alpha * 15 * F
    d0 = delta * F
    a = math.cos(d0) * math.sin(a0 + zeta)
    b = math.cos(theta) * math.cos(d0) * math.cos(a0 + zeta) - math.sin(theta) * math.sin(d0)
    c = math.sin(theta) * math.cos(d0) * math.cos(a0 + zeta) + math.cos(theta) * math.sin(d0)
    ra = (math.atan(a / b) / F + z) / 15
    if b < 0:
        ra += 12
    elif a < 0:
        ra += 24
    if ra < 0:
        ra += 24
    if ra >= 24:
        ra -= 24
    return ra, math.asin(max(-1.0, min(1.0, c))) / F


def read_table():
    names = (ROOT / "resources/con9.txt").read_text().splitlines()
    rows = [tuple(float(x) for x in line.split())
            for line in (ROOT / "resources/conbound.txt").read_text().splitlines()]
    table = np.array(rows)
    return names, table


def lookup(table, ra_h, dec_d):
    """Row numbers (0 based, -1 none) of the first rows holding each position (arrays)."""
    ra_h = np.atleast_1d(ra_h)
    dec_d = np.atleast_1d(dec_d)
    found = -np.ones(ra_h.shape, dtype=int)
    for i, (lo, hi, dec_low, _n) in enumerate(table):
        hit = (found < 0) & (dec_d >= dec_low) & (ra_h >= lo) & (ra_h < hi)
        found[hit] = i
    return found


def offset(ra_h, dec_d, bearing, dist_deg):
    """Points at angular distances along a bearing from a position (degrees in, hours out)."""
    a = math.radians(ra_h * 15)
    d = math.radians(dec_d)
    r = np.radians(dist_deg)
    dec2 = np.arcsin(np.sin(d) * np.cos(r) + np.cos(d) * np.sin(r) * np.cos(bearing))
    ra2 = a + np.arctan2(np.sin(bearing) * np.sin(r) * np.cos(d),
                         np.cos(r) - np.sin(d) * np.sin(dec2))
    return np.mod(np.degrees(ra2) / 15, 24), np.degrees(dec2)


def edge_distance(table, ra_h, dec_d, limit_arcsec=120.0):
    """Arc seconds to the nearest point where the table's constellation changes: rings 0.5"
    apart, then the last step again at 0.05"."""
    constellation = table[lookup(table, ra_h, dec_d)[0], 3]
    bearings = np.radians(np.arange(0, 360, 1.0))

    def changes(r):
        ras, decs = offset(ra_h, dec_d, bearings, r / 3600)
        rows = lookup(table, ras, decs)
        return np.any((rows < 0) | (table[rows, 3] != constellation))

    for k in range(1, int(limit_arcsec / 0.5) + 1):
        if changes(k * 0.5):
            for fine in range(1, 11):
                r = (k - 1) * 0.5 + fine * 0.05
                if changes(r):
                    return r
    return float("inf")


def same(abbreviation, iau):
    """Our abbreviation (the capitals of the name) against an IAU one: Hydrus and Sagitta lack
    the last letter of theirs."""
    return abbreviation.lower() == {"hyi": "hy", "sge": "sg"}.get(iau.lower(), iau.lower())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", default=str(ROOT / "build/bin/selvane-cli"))
    parser.add_argument("--count", type=int, default=10000)
    parser.add_argument("--seed", type=int, default=1875)
    args = parser.parse_args()
    sys.stdout.reconfigure(line_buffering=True)  # the boundary distances take a while

    rng = random.Random(args.seed)
    positions = []
    for _ in range(args.count):
        ra = rng.uniform(0, 24)
        dec = math.degrees(math.asin(rng.uniform(-1, 1)))
        positions.append((f"{ra:.10f}", f"{dec:.10f}"))
    stdin = "".join(f"{ra}\t{dec}\n" for ra, dec in positions)

    with tempfile.TemporaryDirectory() as home:
        start = time.perf_counter()
        run = subprocess.run([args.cli, "--home", home, "--settings", home + "/s.ini",
                              "constellation", "-"], input=stdin.encode(),
                             capture_output=True, check=False)
        seconds = time.perf_counter() - start
    lines = run.stdout.decode().splitlines()
    if run.returncode != 0 or lines[0] != "Name\tAbbr" or len(lines) != args.count + 1:
        sys.exit(f"selvane-cli failed ({run.returncode}): {run.stderr.decode()}")
    ours = [line.split("\t")[0] for line in lines[1:]]
    abbreviations = [line.split("\t")[1] for line in lines[1:]]
    print(f"selvane-cli constellation -: {args.count} lookups in {seconds:.3f} s")

    ras = np.array([float(ra) for ra, _ in positions])
    decs = np.array([float(dec) for _, dec in positions])
    coords = SkyCoord(ra=ras * 15 * u.deg, dec=decs * u.deg, frame="icrs")
    theirs = get_constellation(coords, short_name=True)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        at1875 = coords.transform_to(PrecessedGeocentric(equinox="B1875"))

    names, table = read_table()
    ours1875 = [precess(float(ra), float(dec), 2000.0) for ra, dec in positions]
    # The table read here must give what the program gave, or the distances mean nothing.
    rows = lookup(table, np.array([p[0] for p in ours1875]), np.array([p[1] for p in ours1875]))
    mine = [names[int(table[r, 3]) - 1].strip() if r >= 0 else "" for r in rows]
    if mine != ours:
        sys.exit("this script's reading of the table disagrees with selvane-cli")

    ours_at1875 = SkyCoord(ra=[p[0] * 15 for p in ours1875] * u.deg,
                           dec=[p[1] for p in ours1875] * u.deg, frame="icrs")
    theirs_at1875 = SkyCoord(ra=at1875.ra, dec=at1875.dec, frame="icrs")
    seps = ours_at1875.separation(theirs_at1875).arcsec
    print(f"1875.0 positions, this program's precession against astropy's: "
          f"median {np.median(seps):.2f}\", max {np.max(seps):.2f}\"")

    # Most of that is the annual aberration of astropy's geocentric frame; against its plain
    # precession (FK5, equinox J2000 to B1875) the difference is that of the precession models.
    fk5 = SkyCoord(ra=ras * 15 * u.deg, dec=decs * u.deg, frame=FK5(equinox="J2000"))
    fk5_1875 = fk5.transform_to(FK5(equinox="B1875"))
    plain = ours_at1875.separation(SkyCoord(ra=fk5_1875.ra, dec=fk5_1875.dec, frame="icrs"))
    print(f"  against astropy's plain precession (FK5 J2000 to B1875): "
          f"median {np.median(plain.arcsec):.2f}\", max {np.max(plain.arcsec):.2f}\"")

    differ = [i for i in range(args.count) if not same(abbreviations[i], str(theirs[i]))]
    print(f"agree: {args.count - len(differ)} of {args.count}; differ: {len(differ)}")
    for i in differ:
        ra, dec = positions[i]
        edge = edge_distance(table, *ours1875[i])
        verdict = "precession" if edge <= seps[i] else "UNEXPLAINED"
        print(f"  RA {ra} h  Dec {dec} deg: selvane {abbreviations[i]}, astropy {theirs[i]}, "
              f"sep {seps[i]:.2f}\", edge {edge:.2f}\" ({verdict})")


if __name__ == "__main__":
    main()
