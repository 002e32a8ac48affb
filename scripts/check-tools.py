#!/usr/bin/python3
"""Stops the build at once when a program that the build or the tests call
would be missing on a fresh machine.

Every such program must resolve to a file of a package that
scripts/bootstrap.sh names, of a package those pull in (Depends and
Pre-Depends, any alternative, any provider of a virtual package), or of the
base system (essential and required packages). The programs are every
find_program of the CMake files and the list below, which names what the
scripts and tests run.
"""
import os
import re
import shutil
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

TOOLS = """
cmake ctest ninja make gcc g++ clang clang++ ar
x86_64-w64-mingw32-gcc-posix x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-windres
x86_64-w64-mingw32-windmc x86_64-w64-mingw32-ar
i686-w64-mingw32-gcc-posix i686-w64-mingw32-g++-posix i686-w64-mingw32-windres
i686-w64-mingw32-windmc i686-w64-mingw32-ar i686-w64-mingw32-objdump
wine wineboot wineserver winepath xvfb-run Xvfb xauth import
dpkg-source
/usr/bin/python3 basenc base64 uuencode uudecode uudeview uuenview bzip2 xz openssl
awk sed grep tr seq mktemp realpath cut md5sum sha1sum sha256sum iconv m4
cpack gzip file readelf dpkg-shlibdeps groff bash setpriv setsid mount umount cmp
debootstrap chroot pkg-config
wixl msibuild msiinfo mkdocs
""".split()


def cmake_programs():
    found = set()
    pattern = re.compile(r"find_program\([A-Z_0-9]+ +(?:NAMES +)?([A-Za-z0-9_.+-]+)")
    for folder, _, files in os.walk(ROOT):
        if "/build" in folder[len(ROOT):] or "/.git" in folder[len(ROOT):]:
            continue
        for name in files:
            if name == "CMakeLists.txt" or name.endswith(".cmake"):
                with open(os.path.join(folder, name), encoding="utf-8") as f:
                    found.update(pattern.findall(f.read()))
    return found


def bootstrap_packages():
    with open(os.path.join(ROOT, "scripts", "bootstrap.sh"), encoding="utf-8") as f:
        text = f.read()
    listing = re.search(r"^packages=\((.*?)^\)", text, re.S | re.M).group(1)
    return listing.split()


def installed_packages():
    """Package -> (depends, provides, essential, priority) of what is installed."""
    fields = "${Package}\t${Status}\t${Depends}, ${Pre-Depends}\t${Provides}\t${Essential}\t${Priority}\n"
    out = subprocess.run(["dpkg-query", "-W", "-f=" + fields], capture_output=True, text=True).stdout
    packages = {}
    for line in out.splitlines():
        name, status, depends, provides, essential, priority = line.split("\t")
        if not status.endswith(" installed"):
            continue
        names = lambda text: [re.sub(r"\(.*?\)|:any|\s", "", d) for d in re.split(r"[,|]", text)]
        packages[name] = ([d for d in names(depends) if d], [p for p in names(provides) if p],
                          essential == "yes" or priority == "required")
    return packages


def allowed_packages(packages):
    providers = {}
    for name, (_, provides, _) in packages.items():
        for virtual in provides:
            providers.setdefault(virtual, []).append(name)
    allowed = set()
    queue = bootstrap_packages()
    while queue:
        name = queue.pop()
        if name in allowed:
            continue
        allowed.add(name)
        queue.extend(providers.get(name, []))
        queue.extend(packages.get(name, ([], [], False))[0])
    return allowed | {name for name, info in packages.items() if info[2]}


def owners(paths):
    """File -> owning package, trying the merged-/usr spelling too."""
    spellings = {}
    for path in paths:
        candidates = {path, os.path.realpath(path)}
        for prefix in ("/usr/bin/", "/usr/sbin/"):
            for c in list(candidates):
                if c.startswith(prefix):
                    candidates.add(c[len("/usr"):])
        spellings[path] = candidates
    every = sorted(set().union(*spellings.values())) if spellings else []
    out = subprocess.run(["dpkg", "-S"] + every, capture_output=True, text=True).stdout
    owner = {}
    for line in out.splitlines():
        package, _, path = line.partition(": ")
        owner.setdefault(path, package.split(",")[0].split(":")[0])
    return {path: next((owner[c] for c in sorted(cands) if c in owner), None)
            for path, cands in spellings.items()}


def main():
    tools = sorted(set(TOOLS) | cmake_programs())
    allowed = allowed_packages(installed_packages())
    problems = []
    paths = {}
    for tool in tools:
        path = shutil.which(tool)
        if path is None:
            problems.append(f"'{tool}' is not installed: scripts/bootstrap.sh must install its package")
        else:
            paths[tool] = path
    owner = owners(paths.values())
    for tool, path in paths.items():
        package = owner[path]
        if package is None:
            problems.append(f"'{tool}' resolves to {path}, which no Debian package installed: "
                            "the build must use the packaged one")
        elif package not in allowed:
            problems.append(f"'{tool}' comes from the package '{package}', which "
                            f"scripts/bootstrap.sh neither names nor pulls in: add '{package}' to it")
    for problem in problems:
        print("check-tools: " + problem)
    if problems:
        print(f"check-tools: {len(problems)} program(s) would be missing on a fresh machine")
        return 1
    print(f"check-tools: {len(tools)} programs, each from a package the bootstrap installs")
    return 0


if __name__ == "__main__":
    sys.exit(main())
