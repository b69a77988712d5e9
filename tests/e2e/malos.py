#!/usr/bin/env python3
"""Closes the recorded day with one terminal's file bad, in every way that was thought of.

usage: malos.py QUIMOCTL DATA_DIR ARCHIVO_MALO [--mostrar] [--todo] [PART_OF_A_NAME...]

A close with a bad file must say, in Spanish, which terminal it is and what is wrong; it never
crashes or hangs. Whatever is wrong, the day can be ended without that terminal: the others' sales
are whole then, and the bad terminal's file is where it was, or kept. What is only odd is copied as
it stands. --mostrar prints what the manager reads in each case; --todo
runs the cases too that are much like others, or large.
"""
import concurrent.futures
import json
import os
import shutil
import subprocess
import sys
import tempfile

import malos_archivos
import malos_renglones
from malos_casos import BAD, LIMIT_S, Day
from matar_cierre import new_central

WORKERS = 2


def end_without(day, case, reference, problems):
    """The day is ended without the bad terminal: everything of the others must be there."""
    done = day.close("--continuar", "--omitir", BAD)
    if done.returncode != 4:
        problems.append(f"--continuar --omitir: status {done.returncode}\n{day.message(done)[:300]}")
        return
    problems += day.compare_others(reference, strict=not case.changes_rows)
    problems += day.bad_file_is_safe()


def run(case, ctl, data, tool, central, reference):
    """The problems with one case, and what the manager read."""
    day = Day(ctl, data, tool, central)
    problems = []
    try:
        case.prepare(day)
        day.remember()
        try:
            done = day.close(limit=LIMIT_S)
        except subprocess.TimeoutExpired:
            return [f"the close did not end within {LIMIT_S} s"], ""
        said = day.message(done)
        if done.returncode < 0 or done.returncode not in (0, 1, 4):
            problems.append(f"ended with status {done.returncode}")
        if "Traceback" in said or "terminate called" in said or "QUIMO_CHECK" in said:
            problems.append("the program fell over")
        if done.returncode not in case.status:
            problems.append(f"status {done.returncode}, expected {case.status}")
        problems += [f"not said: {text}" for text in case.says if text not in said]
        for query, wanted in case.wanted.items():
            got = day.value(query)
            if got != wanted:
                problems.append(f"{query}: {got!r}, expected {wanted!r}")
        if done.returncode == 1:
            end_without(day, case, reference, problems)
        elif case.alone:
            problems += day.compare_others(reference, strict=False)
        return problems, f"[{done.returncode}] {said}"
    except subprocess.CalledProcessError as error:
        return [f"could not be prepared: {error.stderr}"], ""
    except subprocess.TimeoutExpired as error:
        return [f"did not end: {error}"], ""
    finally:
        day.remove()


def reference_day(ctl, data, tool, central):
    """The central sales tables and the terminals' keys of an undisturbed close."""
    day = Day(ctl, data, tool, central)
    done = day.close()
    assert done.returncode == 0, done.stdout + done.stderr
    tables = day.sales()
    day.remove()
    with open(f"{data}/terminals/{BAD}/contents.json", encoding="utf-8") as f:
        return tables, json.load(f)


def main():
    words = [w for w in sys.argv[1:] if not w.startswith("--")]
    ctl, data, tool = words[:3]
    show = "--mostrar" in sys.argv
    cases = [c for c in malos_renglones.CASES + malos_archivos.CASES if "--todo" in sys.argv or not c.more]
    if words[3:]:
        cases = [c for c in cases if any(part in c.name for part in words[3:])]
    assert len({c.name for c in cases}) == len(cases), "two cases have the same name"
    folder = tempfile.mkdtemp(prefix="malos-")
    try:
        central = new_central(ctl, data, folder)
        reference = reference_day(ctl, data, tool, central)
        failed = 0
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            results = pool.map(lambda c: run(c, ctl, data, tool, central, reference), cases)
            for case, (problems, said) in zip(cases, results):
                failed += bool(problems)
                if show or problems:
                    print(f"=== {case.name}\n{said}", flush=True)
                for problem in problems:
                    print(f"!!! {problem}")
        print(f"{len(cases)} bad files and rows, {failed} with problems")
    finally:
        shutil.rmtree(folder)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    os.environ["LC_ALL"] = "C.UTF-8"
    main()
