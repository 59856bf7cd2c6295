#!/usr/bin/python3
"""selvane-cli's planets and Earth against astropy, 1600-2400.

planets: `selvane-cli planets` at observing clocks spread over 1600-2400 (fixed seed; Greenwich,
zone 0, standard time, so the clock is Universal Time), each planet's apparent right ascension
and declination (the "00" texts, whole seconds) against astropy's apparent place of the true
equator and equinox of date (TETE, geocentre) from its built-in ephemeris, with the clock's
instant taken as dynamical time (TT), as the routines take it. Prints per planet the worst
differences in right ascension (times cos dec) and declination and the worst separation, in arc
minutes. Pluto is not in the built-in ephemeris and is left out.

earth: `selvane-cli earth T...` (the shipped truncated series) against astropy's heliocentric
Earth (built-in ephemeris, TT), rotated from ICRS to the ecliptic of J2000 by the obliquity
84381.406". Prints the worst differences of L and B (arc seconds) and R (AU).

Needs Debian's python3-astropy (run with /usr/bin/python3) and a built selvane-cli.
Usage: bench/planets_vs_astropy.py [--cli build/bin/selvane-cli] [--count 120]
"""

import argparse
import math
import pathlib
import random
import subprocess
import sys
import tempfile
import warnings

import numpy as np
from astropy import units as u
from astropy.coordinates import TETE, get_body, get_body_barycentric, solar_system_ephemeris
from astropy.time import Time
from astropy.utils import iers

# Offline: no IERS downloads; the times are taken as they are.
iers.conf.auto_download = False
iers.conf.iers_degraded_accuracy = "ignore"

ROOT = pathlib.Path(__file__).resolve().parent.parent
PLANETS = ["MERCURY", "VENUS", "MARS", "JUPITER", "SATURN", "URANUS", "NEPTUNE", "PLUTO"]


def cli(exe, home, sets, args):
    command = [str(exe), "--home", str(home), "--settings", str(home / "s.ini")]
    for key, value in sets.items():
        command += ["--set", f"{key}={value}"]
    result = subprocess.run(command + args, capture_output=True, text=True,
                            env={"LANG": "C", "PATH": "/usr/bin:/bin"})
    if result.returncode != 0:
        sys.exit(f"{' '.join(command + args)}: exit {result.returncode}\n{result.stderr}")
    return [line.split("\t") for line in result.stdout.splitlines()[1:]]


def hms(text):  # "06h 05m 24s"
    h, m, s = (float(part[:-1]) for part in text.split())
    return (h + m / 60 + s / 3600) * 15


def dms(text):  # "+23°26' 12\""
    sign = -1 if text[0] == "-" else 1
    d, rest = text[1:].split("\u00b0")
    m, s = rest.split("'")
    return sign * (float(d) + float(m) / 60 + float(s.strip().rstrip('"')) / 3600)


def planets(exe, home, count, rng):
    worst = {name: [0.0, 0.0, 0.0, ""] for name in PLANETS[:7]}
    for _ in range(count):
        year = rng.randint(1600, 2399)
        month, day = rng.randint(1, 12), rng.randint(1, 28)
        hour, minute = rng.randint(0, 23), rng.randint(0, 59)
        sets = {"UseRealTime": "N", "PDate": f"{year:04d}-{month:02d}-{day:02d}",
                "Ptime": f"{hour:02d}:{minute:02d}", "Plat": "51.5", "PLon": "0", "PTz": "0",
                "PStd": "S"}
        rows = cli(exe, home, sets, ["planets"])
        t = Time(f"{year:04d}-{month:02d}-{day:02d}T{hour:02d}:{minute:02d}:00", scale="tt")
        for row in rows[:7]:
            name = row[0]
            ra, dec = hms(row[5]), dms(row[6])
            body = get_body(name.lower(), t).transform_to(TETE(obstime=t))
            ra0, dec0 = body.ra.deg, body.dec.deg
            dra = ((ra - ra0 + 180) % 360 - 180) * math.cos(math.radians(dec0)) * 60
            ddec = (dec - dec0) * 60
            sep = math.hypot(dra, ddec)
            w = worst[name]
            w[0] = max(w[0], abs(dra))
            w[1] = max(w[1], abs(ddec))
            if sep > w[2]:
                w[2], w[3] = sep, sets["PDate"] + " " + sets["Ptime"]
    print(f"planets: {count} clocks 1600-2400, apparent RA/Dec against astropy (arc minutes)")
    print(f"{'planet':8s} {'dRA cos d':>10s} {'dDec':>8s} {'sep':>8s}  worst at (UT)")
    for name, (dra, ddec, sep, at) in worst.items():
        print(f"{name:8s} {dra:10.3f} {ddec:8.3f} {sep:8.3f}  {at}")


def earth(exe, home, count, rng):
    Ts = [rng.uniform(-4.0, 4.0) for _ in range(count)]  # 1600-2400
    rows = cli(exe, home, {}, ["earth"] + [f"{T:.8f}" for T in Ts])
    eps = math.radians(84381.406 / 3600)
    worst = [0.0, 0.0, 0.0]
    for row in rows:
        T = float(row[0])
        t = Time(2451545.0 + 36525 * T, format="jd", scale="tt")
        v = (get_body_barycentric("earth", t) - get_body_barycentric("sun", t)).xyz.to(u.au).value
        x, y, z = v[0], v[1] * math.cos(eps) + v[2] * math.sin(eps), \
            -v[1] * math.sin(eps) + v[2] * math.cos(eps)
        L0 = math.atan2(y, x) % (2 * math.pi)
        R0 = math.sqrt(x * x + y * y + z * z)
        B0 = math.asin(z / R0)
        L, B, R = float(row[1]), float(row[2]), float(row[3])
        worst[0] = max(worst[0], abs((L - L0 + math.pi) % (2 * math.pi) - math.pi))
        worst[1] = max(worst[1], abs(B - B0))
        worst[2] = max(worst[2], abs(R - R0))
    arcsec = 180 / math.pi * 3600
    print(f"earth: {count} instants 1600-2400 against astropy's heliocentric Earth")
    print(f"  worst dL {worst[0] * arcsec:.3f}\"  dB {worst[1] * arcsec:.3f}\"  "
          f"dR {worst[2]:.2e} AU")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", type=pathlib.Path, default=ROOT / "build/bin/selvane-cli")
    parser.add_argument("--count", type=int, default=120)
    args = parser.parse_args()
    warnings.simplefilter("ignore")  # ERFA's "dubious year" outside its leap-second table
    solar_system_ephemeris.set("builtin")
    rng = random.Random(1987)
    with tempfile.TemporaryDirectory() as folder:
        home = pathlib.Path(folder)
        planets(args.cli, home, args.count, rng)
        earth(args.cli, home, args.count * 5, rng)


if __name__ == "__main__":
    np.seterr(all="ignore")
    main()
