"""The Python examples run, and the package installs with pip from the source
tree, offline, and then finds the library through the dynamic loader."""

import os
import shutil
import subprocess
import sys

from conftest import EXAMPLES, SOURCE, expected_answer, request_path, scenario_steps


def run(arguments, env=None):
    return subprocess.run(arguments, capture_output=True, text=True, timeout=300, env=env)


def test_the_evaluate_script_prints_what_tov_eval_prints():
    steps = scenario_steps()
    arguments = [str(EXAMPLES / "rules.json"), str(EXAMPLES / "datamodel.json")]
    for step in steps:
        arguments += [step["kind"], str(request_path(step))]
    done = run([sys.executable, str(EXAMPLES / "python" / "evaluate.py"), *arguments])
    assert done.returncode == 0, done.stderr
    assert done.stdout.splitlines() == [expected_answer(step) for step in steps]


def test_the_evaluate_script_tells_a_document_that_does_not_load(tmp_path):
    broken = tmp_path / "rules.json"
    broken.write_text("{")
    done = run([sys.executable, str(EXAMPLES / "python" / "evaluate.py"), str(broken),
                str(EXAMPLES / "datamodel.json")])
    assert done.returncode == 1
    assert done.stderr == (f"evaluate.py: {broken} did not load: "
                           "Json has fundamental parsing error\n")
    assert run([sys.executable, str(EXAMPLES / "python" / "evaluate.py")]).returncode == 2


def test_the_two_pass_walk_through_runs():
    done = run([sys.executable, str(EXAMPLES / "python" / "two_pass_exchange.py"), str(EXAMPLES)])
    assert done.returncode == 0, done.stderr
    assert "add: ['membersOfFamily']\n" in done.stdout
    assert "initialize ReleaseDate with Reset\n" in done.stdout
    assert "Found TOV rule for specific versioning attribute selection ['Overwrite']\n" in done.stdout


def test_pip_installs_the_package_offline(tmp_path):
    # pip builds in the folder it is given, so it gets a copy of the sources.
    sources = tmp_path / "sources"
    shutil.copytree(SOURCE / "python", sources)
    target = tmp_path / "site"
    done = run([sys.executable, "-m", "pip", "install", "--quiet", "--no-build-isolation",
                "--no-deps", "--no-index", "--target", str(target), str(sources)])
    assert done.returncode == 0, done.stdout + done.stderr
    assert (target / "tov" / "py.typed").is_file()

    # Only the installed copy and the loader path: no TOV_LIBRARY.
    environment = {key: value for key, value in os.environ.items()
                   if key not in ("TOV_LIBRARY", "PYTHONPATH")}
    environment["PYTHONPATH"] = str(target)
    environment["LD_LIBRARY_PATH"] = os.path.dirname(os.environ["TOV_LIBRARY"])
    done = run([sys.executable, "-c", "import tov; print(tov.__file__); print(tov.version())"],
               env=environment)
    assert done.returncode == 0, done.stderr
    assert done.stdout == f"{target / 'tov' / '__init__.py'}\n1.1\n"
