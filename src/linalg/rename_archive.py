#!/usr/bin/env python3
"""Build step: copies the OpenBLAS static archive with every defined global symbol renamed PREFIX + name, so
that the library's own exported dgemm_, dgetrf_ ... never meet OpenBLAS's, and removes the members named
by --drop (the archive's xerbla, replaced by the library's argument-error hook under the renamed name).
A symbol named by --own keeps PREFIX + name for every caller, the archive's members included, and is defined
by the library; the archive's own definition is renamed PREFIX + "openblas_" + name, for the library's to call.

--redirect OLD=NEW renames a symbol the archive uses but does not define (the OpenMP runtime's thread
queries, answered by the library). --calls NAME sends the archive's calls of its own routine NAME (the
level-3 BLAS inside its LAPACK) to CALL_PREFIX + NAME instead of PREFIX + NAME; the routine itself keeps
the name PREFIX + NAME."""
import argparse
import shutil
import subprocess
import tempfile
from pathlib import Path


def fix_definitions(args, work: Path, fixes: dict[str, str]):
    """Renames OLD to NEW (`fixes`) where OLD is defined, in the few members defining one, in one pass over an
    archive of just those members: the definitions of the --calls routines (sent to CALL_PREFIX + name by the
    archive-wide rename) get PREFIX + name back, and those of the --own symbols become PREFIX + "openblas_" +
    name while the other members' references keep PREFIX + name. A member using a symbol of `fixes` that it
    does not define would be renamed wrongly: refused."""
    listing = subprocess.run([args.nm, "-A", str(work)], capture_output=True, text=True, check=True).stdout
    defining, using = set(), set()
    for line in listing.splitlines():
        where, _, rest = line.rpartition(":")
        fields = rest.split()
        if len(fields) >= 2 and fields[-1] in fixes:
            (using if fields[-2] == "U" else defining).add((where.rsplit(":", 1)[-1], fields[-1]))
    members = sorted({m for m, _ in defining})
    missing = fixes.keys() - {symbol for _, symbol in defining}
    if missing:
        raise SystemExit(f"not defined by the archive: {sorted(missing)}")
    clashes = sorted(m for m, _ in using if m in members)
    if clashes:
        raise SystemExit(f"members both defining and using a renamed definition: {clashes}")
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([args.ar, "x", str(work.resolve()), *members], cwd=folder, check=True)
        subprocess.run([args.ar, "rc", "defining.a", *members], cwd=folder, check=True)
        map_file = Path(folder) / "fixes.map"
        map_file.write_text("".join(f"{old} {new}\n" for old, new in fixes.items()))
        subprocess.run([args.objcopy, f"--redefine-syms={map_file}", "defining.a"], cwd=folder, check=True)
        subprocess.run([args.ar, "x", "defining.a"], cwd=folder, check=True)
        subprocess.run([args.ar, "rS", str(work.resolve()), *members], cwd=folder, check=True)


def main():
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--nm", required=True)
    ap.add_argument("--objcopy", required=True)
    ap.add_argument("--ar", required=True)
    ap.add_argument("--prefix", required=True)
    ap.add_argument("--drop", action="append", default=[])
    ap.add_argument("--own", action="append", default=[])
    ap.add_argument("--redirect", action="append", default=[], metavar="OLD=NEW")
    ap.add_argument("--calls", action="append", default=[], metavar="NAME")
    ap.add_argument("--call-prefix", default="")
    ap.add_argument("archive", type=Path)
    ap.add_argument("output", type=Path)
    args = ap.parse_args()

    listing = subprocess.run([args.nm, "--defined-only", "-g", str(args.archive)], capture_output=True,
                             text=True, check=True).stdout
    symbols = sorted({line.split()[2] for line in listing.splitlines() if len(line.split()) == 3})
    work = args.output.with_suffix(".tmp.a")
    map_file = args.output.with_suffix(".map")
    renamed = {s: f"{args.prefix}{s}" for s in symbols}
    calls = {name: f"{args.call_prefix}{name}" for name in args.calls if name in renamed}
    redirected = dict(r.split("=", 1) for r in args.redirect)
    map_file.write_text("".join(f"{old} {new}\n" for old, new in {**renamed, **calls, **redirected}.items()))
    shutil.copyfile(args.archive, work)
    subprocess.run([args.objcopy, f"--redefine-syms={map_file}", str(work)], check=True)
    if args.drop:
        subprocess.run([args.ar, "dS", str(work), *args.drop], check=True)
    fixes = {new: renamed[name] for name, new in calls.items()}
    fixes.update({f"{args.prefix}{name}": f"{args.prefix}openblas_{name}" for name in args.own})
    fix_definitions(args, work, fixes)
    # The symbol index is rebuilt once, at the end: each rebuild reads all the archive's members.
    subprocess.run([args.ar, "s", str(work)], check=True)
    work.replace(args.output)


if __name__ == "__main__":
    main()
