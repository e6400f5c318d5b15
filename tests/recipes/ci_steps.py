#!/usr/bin/env python3
"""Takes a CI recipe apart: prints the commands of its job as one script for sh -e, without those that
install packages, or fails when it is not what its service reads.
usage: ci_steps.py github|gitlab|docker FILE [OUTPUT]
With OUTPUT, what a gitlab job printed, prints the rate that the service would find in it."""
import re
import sys

import yaml


def github(text):
    job = yaml.safe_load(text)["jobs"]["coverage"]
    assert job["runs-on"], "no runner"
    for step in job["steps"]:
        assert ("run" in step) != ("uses" in step), f"neither run nor uses: {step}"
        if "uses" in step:
            assert re.fullmatch(r"[\w-]+/[\w-]+@v\d+", step["uses"]), step["uses"]
        elif step["name"] != "Install":
            yield f"(\n{step['run'].rstrip()}\n)"
    paths = [step for step in job["steps"] if "upload-artifact" in step.get("uses", "")][0]["with"]["path"]
    yield from (f"test -e '{path}'" for path in paths.split())


def gitlab(text):
    job = yaml.safe_load(text)["coverage"]
    assert all(isinstance(line, str) for line in job["before_script"] + job["script"])
    yield from job["script"]
    report = job["artifacts"]["reports"]["coverage_report"]
    assert report["coverage_format"] == "cobertura"
    yield from (f"test -e '{path}'" for path in job["artifacts"]["paths"] + [report["path"]])


def docker(text):
    lines = re.sub(r"\\\n\s*", "", re.sub(r"(?m)^#.*\n", "", text)).split("\n")
    stages, place = [], ""
    for line in filter(None, lines):
        word, _, rest = line.partition(" ")
        assert word in ("FROM", "COPY", "RUN", "WORKDIR"), f"no instruction: {line}"
        assert stages or word == "FROM", "does not begin with FROM"
        if word == "FROM":
            stages.append(re.fullmatch(r"\S+ AS (\w+)", rest)[1])
        elif word == "WORKDIR":
            place = rest
        elif word == "RUN" and "apt-get" not in rest:
            yield rest
        elif word == "COPY" and rest.startswith("--from="):
            stage, path = re.match(r"--from=(\w+) (\S+) ", rest).groups()
            assert stage in stages[:-1], f"there is no stage {stage}"
            assert path.startswith(place + "/"), path
            yield f"test -e '{path[len(place) + 1:]}'"


kind, recipe = sys.argv[1], open(sys.argv[2], encoding="utf-8").read()
steps = list({"github": github, "gitlab": gitlab, "docker": docker}[kind](recipe))
if len(sys.argv) > 3:
    pattern = yaml.safe_load(recipe)["coverage"]["coverage"]
    print(re.findall(pattern.strip("/"), open(sys.argv[3], encoding="utf-8").read(), re.M)[-1])
else:
    print("\n".join(steps))
