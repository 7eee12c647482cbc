#!/usr/bin/env python3
"""Build step: copies the OpenBLAS static archive with every defined global symbol renamed PREFIX + name, so
that the library's own exported dgemm_, dgetrf_ ... never meet OpenBLAS's, and removes the members named
by --drop (the archive's xerbla, replaced by the library's argument-error hook under the renamed name)."""
import argparse
import shutil
import subprocess
from pathlib import Path


def main():
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--nm", required=True)
    ap.add_argument("--objcopy", required=True)
    ap.add_argument("--ar", required=True)
    ap.add_argument("--prefix", required=True)
    ap.add_argument("--drop", action="append", default=[])
    ap.add_argument("archive", type=Path)
    ap.add_argument("output", type=Path)
    args = ap.parse_args()

    listing = subprocess.run([args.nm, "--defined-only", "-g", str(args.archive)], capture_output=True,
                             text=True, check=True).stdout
    symbols = sorted({line.split()[2] for line in listing.splitlines() if len(line.split()) == 3})
    work = args.output.with_suffix(".tmp.a")
    map_file = args.output.with_suffix(".map")
    map_file.write_text("".join(f"{s} {args.prefix}{s}\n" for s in symbols))
    shutil.copyfile(args.archive, work)
    subprocess.run([args.objcopy, f"--redefine-syms={map_file}", str(work)], check=True)
    if args.drop:
        subprocess.run([args.ar, "d", str(work), *args.drop], check=True)
    work.replace(args.output)


if __name__ == "__main__":
    main()
