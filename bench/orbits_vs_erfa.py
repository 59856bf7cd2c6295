#!/usr/bin/python3
"""selvane-cli's comet and asteroid ephemerides against a two-body computation with ERFA's Earth.

For a sample of the shipped comets and asteroids (AstComet.mdb, fixed seed), `selvane-cli ephem
comet|asteroid NAME START STEPS STEP` is run around each body's element date, and each step's
right ascension and declination (with their rounding offsets taken off) are compared with an
independent two-body place: Kepler's equation (ellipse), Barker's equation (parabola) or the
hyperbolic Kepler equation solved to machine precision, the orbit rotated from the ecliptic of
J2000.0 (obliquity 84381.448") to the equator, the Earth's heliocentric place from ERFA's
epv00, and the light time iterated to convergence. The step's instant is taken as the same
dynamical time on both sides (the program uses Universal Time as it stands), so what is
measured is the program's own arithmetic: its truncated Earth series, its single light-time
pass and its iteration tolerances.

Prints, for comets and for asteroids, the worst and the mean separation in arc seconds and the
worst relative error of the distances.

Needs Debian's python3-erfa and python3-numpy (run with /usr/bin/python3) and a built
selvane-cli; the shipped AstComet.mdb is read from the CLI's resources folder.
Usage: bench/orbits_vs_erfa.py [--cli build/bin/selvane-cli] [--count 150]
"""

import argparse
import math
import pathlib
import random
import sqlite3
import subprocess
import sys
import tempfile

import warnings

import erfa
import numpy as np

GAUSS_K = 0.01720209895
C_AU_PER_DAY = 173.1446326846693
OBLIQUITY = math.radians(84381.448 / 3600)
RA_OFFSET_HOURS = 0.0005
DEC_OFFSET_DEGREES = 0.005


def julian_day(year, month, day):
    """Julian Day of a Gregorian (or Julian before 1582 October 15) date with a day fraction."""
    gregorian = (year, month, day) >= (1582, 10, 15)
    if month < 3:
        year -= 1
        month += 12
    b = 0
    if gregorian:
        a = year // 100
        b = 2 - a + a // 4
    return math.floor(365.25 * (year + 4716)) + math.floor(30.6001 * (month + 1)) + day + b - 1524.5


def calendar(jd):
    z = math.floor(jd + 0.5)
    f = jd + 0.5 - z
    a = z
    if z >= 2299161:
        alpha = math.floor((z - 1867216.25) / 36524.25)
        a = z + 1 + alpha - alpha // 4
    b = a + 1524
    c = math.floor((b - 122.1) / 365.25)
    d = math.floor(365.25 * c)
    e = math.floor((b - d) / 30.6001)
    day = b - d - math.floor(30.6001 * e) + f
    month = e - 1 if e < 14 else e - 13
    year = c - 4716 if month > 2 else c - 4715
    return year, month, day


def true_anomaly_and_radius(dt_days, q, e, n_ellipse):
    """Two-body true anomaly and radius dt_days after perihelion (or M = n dt for ellipses)."""
    if e < 1:
        a = q / (1 - e)
        M = math.remainder(n_ellipse * dt_days, 2 * math.pi)
        E = M if e < 0.8 else math.pi * math.copysign(1, M) if M else 0.0
        for _ in range(100):
            d = (E - e * math.sin(E) - M) / (1 - e * math.cos(E))
            E -= d
            if abs(d) < 1e-15:
                break
        v = 2 * math.atan2(math.sqrt(1 + e) * math.sin(E / 2), math.sqrt(1 - e) * math.cos(E / 2))
        return v, a * (1 - e * math.cos(E))
    if e == 1:
        W = 3 * GAUSS_K / math.sqrt(2 * q ** 3) * dt_days
        y = math.cbrt(W / 2 + math.sqrt(W * W / 4 + 1))
        s = y - 1 / y
        v = 2 * math.atan(s)
        return v, q * (1 + s * s)
    a = q / (e - 1)
    M = GAUSS_K * dt_days / a ** 1.5
    F = math.asinh(M / e)
    for _ in range(200):
        d = (e * math.sinh(F) - F - M) / (e * math.cosh(F) - 1)
        F -= d
        if abs(d) < 1e-15:
            break
    v = 2 * math.atan(math.sqrt((e + 1) / (e - 1)) * math.tanh(F / 2))
    return v, a * (e * math.cosh(F) - 1)


def helio_equatorial(body, jd):
    """Heliocentric equatorial J2000 position (AU) of a body's two-body orbit at jd."""
    q, e, i, node, peri, tp, n = body
    v, r = true_anomaly_and_radius(jd - tp, q, e, n)
    u = peri + v
    x = r * (math.cos(node) * math.cos(u) - math.sin(node) * math.sin(u) * math.cos(i))
    y = r * (math.sin(node) * math.cos(u) + math.cos(node) * math.sin(u) * math.cos(i))
    z = r * math.sin(u) * math.sin(i)
    ce, se = math.cos(OBLIQUITY), math.sin(OBLIQUITY)
    return np.array([x, y * ce - z * se, y * se + z * ce])


def geocentric(body, jd):
    pvh, _ = erfa.epv00(jd, 0.0)
    earth = np.array(pvh[0])
    tau = 0.0
    for _ in range(10):
        g = helio_equatorial(body, jd - tau) - earth
        tau = np.linalg.norm(g) / C_AU_PER_DAY
    ra = math.atan2(g[1], g[0]) % (2 * math.pi)
    dec = math.asin(g[2] / np.linalg.norm(g))
    return ra, dec, np.linalg.norm(g), np.linalg.norm(helio_equatorial(body, jd - tau))


def separation(ra1, dec1, ra2, dec2):
    return math.degrees(erfa.seps(ra1, dec1, ra2, dec2)) * 3600


def comet_body(row):
    name, ty, tm, td, q, e, i, peri, node = row
    tp = julian_day(int(ty), int(tm), td)
    n = GAUSS_K / (q / (1 - e)) ** 1.5 if e < 1 else 0
    return name, (q, e, math.radians(i), math.radians(node), math.radians(peri), tp, n), tp


def asteroid_body(row):
    name, ey, em, ed, a, e, i, M, node, peri = row
    epoch = julian_day(int(ey), int(em), ed)
    n = GAUSS_K / a ** 1.5
    tp = epoch - math.radians(M) / n
    return name, (a * (1 - e), e, math.radians(i), math.radians(node), math.radians(peri), tp,
                  n), epoch


def run_cli(cli, home, settings, kind, name, jd, steps, step):
    y, m, d = calendar(jd)
    start = f"{y:04d}-{m:02d}-{int(d):02d}"
    out = subprocess.run([cli, "--home", home, "--settings", settings, "ephem", kind, name,
                          start, str(steps), str(step)], capture_output=True, text=True)
    if out.returncode != 0:
        return None, julian_day(y, m, int(d))
    rows = [line.split("\t") for line in out.stdout.splitlines()[1:]]
    return rows, julian_day(y, m, int(d))


def compare(cli, home, settings, kind, bodies, steps, step):
    seps, dist = [], []
    skipped = 0
    for name, body, centre in bodies:
        rows, jd0 = run_cli(cli, home, settings, kind, name, centre - steps // 2 * step, steps,
                            step)
        if rows is None:
            skipped += 1
            continue
        for k, row in enumerate(rows):
            ra_h = float(row[2]) - RA_OFFSET_HOURS
            dec = float(row[3])
            dec = math.copysign(abs(dec) - DEC_OFFSET_DEGREES, dec)
            ra, de, delta, r = geocentric(body, jd0 + k * step)
            seps.append(separation(math.radians(ra_h * 15), math.radians(dec), ra, de))
            dist.append(max(abs(float(row[4]) / delta - 1), abs(float(row[5]) / r - 1)))
    return seps, dist, skipped


def main():
    # epv00 warns outside 1900-2100, where its series is less exact; the places are still used.
    warnings.simplefilter("ignore", erfa.ErfaWarning)
    parser = argparse.ArgumentParser()
    parser.add_argument("--cli", default="build/bin/selvane-cli")
    parser.add_argument("--count", type=int, default=150)
    args = parser.parse_args()
    cli = str(pathlib.Path(args.cli).resolve())
    db = sqlite3.connect(pathlib.Path(cli).parent / "resources" / "AstComet.mdb")
    rng = random.Random(18)
    comets = db.execute("SELECT Name, tyear, tmonth, tday, q, e, i, ArgPeri, ascnode FROM Comet "
                        "WHERE EPOCH = 2000").fetchall()
    asteroids = db.execute("SELECT Name, eyear, emonth, eday, a, e, i, M, Node, omega "
                           "FROM Asteroids").fetchall()
    # Names the table holds twice would pick another row; sample unique names only.
    def unique(rows):
        counts = {}
        for row in rows:
            counts[row[0].lower()] = counts.get(row[0].lower(), 0) + 1
        return [row for row in rows if counts[row[0].lower()] == 1]

    comets = [comet_body(r) for r in rng.sample(unique(comets), args.count)]
    asteroids = [asteroid_body(r) for r in rng.sample(unique(asteroids), args.count)]
    with tempfile.TemporaryDirectory() as home:
        settings = pathlib.Path(home) / "settings.ini"
        settings.write_text("[Preferences]\nFIRST=False\n")
        for kind, bodies, steps, step in (("comet", comets, 7, 30), ("asteroid", asteroids, 7, 120)):
            seps, dist, skipped = compare(cli, home, str(settings), kind, bodies, steps, step)
            print(f"{kind}s: {len(bodies) - skipped} bodies, {len(seps)} places; separation "
                  f"worst {max(seps):.2f}\" mean {sum(seps) / len(seps):.2f}\"; distances worst "
                  f"relative {max(dist):.2e}" + (f"; {skipped} not run" if skipped else ""))
    return 0


if __name__ == "__main__":
    sys.exit(main())
