#!/usr/bin/python3
"""selvane-cli's Sun and Moon against astropy, 1600-2400.

Draws observing clocks at random (fixed seed): a date from 1600 to 2400, a time, a latitude
from -60 to 60 and a longitude, the zone 0 so that local time is Universal Time. For each it
runs `selvane-cli sun` and `selvane-cli moon` in a fresh program folder and compares, with the
routines' own reading that Universal Time stands for dynamical time (astropy is given the same
instant as TT, and its sidereal time the same instant as UT1):
  - the Sun's and the Moon's apparent geocentric RA and Dec (outputs 3 and 4) with astropy's
    get_sun / get_body("moon") in the true equator and equinox of date (TETE): the angle
    between the two places;
  - sunrise and sunset (outputs 9 and 10, cut to the minute) with the moments at which
    astropy's Sun stands at the routines' -0.014593 radians, by Greenwich apparent sidereal
    time;
and for some years `selvane-cli moonphases YEAR`: each new and full moon with the moment at
which astropy's apparent longitudes of Moon and Sun differ by 0 or 180 degrees.
Prints the worst and the mean error of each, and the time the runs took.

Needs Debian's python3-astropy (run with /usr/bin/python3) and a built selvane-cli.
Usage: bench/sun_moon_vs_astropy.py [--cli build/bin/selvane-cli] [--count 60] [--years 24]
"""

import argparse
import math
import pathlib
import random
import re
import subprocess
import tempfile
import time
import warnings

import erfa
import numpy as np
from astropy.coordinates import TETE, GeocentricTrueEcliptic, get_body, get_sun
from astropy.time import Time
from astropy.utils import iers

warnings.simplefilter("ignore")
# Offline: no IERS downloads; the times are taken as they are (TT = UT1, no polar motion).
iers.conf.auto_download = False
iers.conf.iers_degraded_accuracy = "ignore"
ROOT = pathlib.Path(__file__).resolve().parent.parent
HORIZON_DEG = -math.degrees(0.014593)


def cli(exe, home, sets, args):
    cmd = [exe, "--home", home, "--settings", home + "/s.ini"]
    for key, value in sets.items():
        cmd += ["--set", f"{key}={value}"]
    out = subprocess.run(cmd + args, capture_output=True, text=True, check=True).stdout
    lines = out.rstrip("\n").split("\n")
    return dict(zip(lines[0].split("\t"), lines[1].split("\t"))) if len(lines) == 2 else lines


def hours_of(text):
    h, m, s = re.match(r"(\d+)h (\d+)m ([\d.]+)s", text).groups()
    return int(h) + int(m) / 60 + float(s) / 3600


def degrees_of(text):
    sign, d, m, s = re.match(r"([+-])(\d+)\u00b0(\d+)'([\d.]+)\"", text).groups()
    return (-1 if sign == "-" else 1) * (int(d) + int(m) / 60 + float(s) / 3600)


def separation_arcsec(ra1, dec1, ra2, dec2):
    return math.degrees(erfa.seps(ra1, dec1, ra2, dec2)) * 3600


def apparent(body, jd):
    t = Time(jd, format="jd", scale="tt")
    c = (get_sun(t) if body == "sun" else get_body("moon", t)).transform_to(TETE(obstime=t))
    return c.ra.rad, c.dec.rad


def sun_altitude(jd, lat, lon_east):
    ra, dec = apparent("sun", jd)
    ha = erfa.gst06a(jd, 0, jd, 0) + math.radians(lon_east) - ra
    la = math.radians(lat)
    return np.degrees(np.arcsin(np.sin(la) * np.sin(dec) + np.cos(la) * np.cos(dec) * np.cos(ha)))


def sun_events(jd0, lat, lon_east):
    """UT hours of the first rising and setting on the UT date starting at jd0."""
    ts = jd0 + np.arange(0, 1.0001, 1 / 144)
    a = sun_altitude(ts, lat, lon_east) - HORIZON_DEG
    found = {}
    for i in range(len(ts) - 1):
        if (a[i] < 0) != (a[i + 1] < 0):
            key = "rise" if a[i] < 0 else "set"
            if key in found:
                continue
            lo, hi = ts[i], ts[i + 1]
            for _ in range(25):
                mid = (lo + hi) / 2
                if (sun_altitude(mid, lat, lon_east) - HORIZON_DEG < 0) == (a[i] < 0):
                    lo = mid
                else:
                    hi = mid
            found[key] = (lo - jd0) * 24
    return found


def elongation(jd):
    t = Time(jd, format="jd", scale="tt")
    frame = GeocentricTrueEcliptic(equinox=t)
    moon = get_body("moon", t).transform_to(frame).lon.deg
    sun = get_sun(t).transform_to(frame).lon.deg
    return (moon - sun) % 360


def phase_moment(jd, full):
    """The TT Julian Day near jd when the elongation is 0 (new) or 180 (full)."""
    target = 180 if full else 0
    for _ in range(4):
        d = (elongation(jd) - target + 180) % 360 - 180
        jd -= d / 12.1907
    return jd


def minutes_of(text):
    m = re.match(r"(\d\d):(\d\d)", text)
    return int(m.group(1)) * 60 + int(m.group(2))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", default=str(ROOT / "build/bin/selvane-cli"))
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--years", type=int, default=24)
    args = parser.parse_args()
    rng = random.Random(17)
    worst = {k: (0.0, "") for k in ("sun", "moon", "rise", "phase")}
    sums = {k: [0.0, 0] for k in worst}

    def note(kind, value, where):
        sums[kind][0] += value
        sums[kind][1] += 1
        if value > worst[kind][0]:
            worst[kind] = (value, where)

    started = time.perf_counter()
    runs = 0
    with tempfile.TemporaryDirectory() as home:
        for _ in range(args.count):
            jd0 = 2305447.5 + rng.randrange(0, 292194)  # 1600-01-01 .. 2400-01-01, 0h UT
            hour, minute = rng.randrange(24), rng.randrange(60)
            lat = round(rng.uniform(-60, 60), 4)
            lon_west = round(rng.uniform(-180, 180), 4)
            y, mo, d, _ = erfa.jd2cal(jd0, 0)
            date = f"{y:04d}-{mo:02d}-{d:02d}"
            sets = {"PDate": date, "Ptime": f"{hour:02d}:{minute:02d}", "Plat": lat,
                    "Plon": lon_west, "PTz": 0, "PStd": "S", "timesAMPM": "False"}
            jd = jd0 + (hour + minute / 60) / 24
            where = f"{date} {hour:02d}:{minute:02d} lat {lat} lon {lon_west}W"
            sun = cli(args.cli, home, sets, ["sun"])
            moon = cli(args.cli, home, sets, ["moon"])
            runs += 2
            for body, out in (("sun", sun), ("moon", moon)):
                ra, dec = apparent(body, jd)
                got_ra = math.radians(hours_of(out["RA"]) * 15)
                got_dec = math.radians(degrees_of(out["Dec"]))
                note(body, separation_arcsec(got_ra, got_dec, ra, dec), where)
            if sun["Rise"] != "ERROR":
                ref = sun_events(jd0, lat, -lon_west)
                for key, text in (("rise", sun["Rise"]), ("set", sun["Set"])):
                    if key in ref:
                        diff = abs(minutes_of(text) - ref[key] * 60)
                        diff = min(diff, 1440 - diff)
                        note("rise", diff, f"{where} {key} {text}")
        for i in range(args.years):
            year = 1600 + round(i * 800 / max(1, args.years - 1))
            lines = cli(args.cli, home, {}, ["moonphases", str(year)])
            runs += 1
            for line in lines[1::7]:
                kind, jd_text, when = line.split("\t")
                got = float(jd_text)
                ref = phase_moment(got, kind == "Full")
                note("phase", abs(got - ref) * 1440, f"{kind} {when}")
    elapsed = time.perf_counter() - started

    labels = {"sun": ("Sun, apparent RA/Dec", "arcsec"),
              "moon": ("Moon, apparent RA/Dec", "arcsec"),
              "rise": ("sunrise and sunset", "min"),
              "phase": ("new and full moon", "min")}
    print(f"{args.count} clocks 1600-2400, {args.years} years of phases; "
          f"{runs} selvane-cli runs and the references in {elapsed:.1f} s")
    for kind, (label, unit) in labels.items():
        value, where = worst[kind]
        total, n = sums[kind]
        print(f"{label:24s} worst {value:8.2f} {unit}  mean {total / max(n, 1):7.2f} {unit}  "
              f"(n {n}; worst at {where})")


if __name__ == "__main__":
    main()
