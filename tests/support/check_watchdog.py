# SPDX-License-Identifier: MIT
"""check_watchdog.py COMMAND...: runs the hanging program and looks at how it ends."""

import os
import socketserver
import subprocess
import sys
import threading


def run(command, test, **environment):
    done = subprocess.run(
        command + [f"--gtest_filter={test}"],
        env={**os.environ, **environment},
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=240,
        check=False,
    )
    return done.returncode, done.stdout.decode(errors="replace")


def expect(condition, what, code, output):
    if not condition:
        sys.exit(f"{what}; exit code {code}, output:\n{output}")


def check_hang(command, test, limit, **environment):
    code, output = run(command, test, **environment)
    expect(code == 42, f"{test} did not end by the watchdog", code, output)
    expect(f"HANG: {test} ran longer than {limit} s" in output, f"{test} is not named", code, output)
    # The stack of the hanging thread leads back into the program itself.
    stacks = output.partition("HANG:")[2]
    expect(stacks.count("hanging_program") >= 2, f"{test}: no stack", code, output)
    return stacks


class Refusing(socketserver.StreamRequestHandler):
    """A fixture controller that has the rights for no server."""

    def handle(self):
        for _ in self.rfile:
            self.wfile.write(b'{"unavailable": "nobody may"}\n')


def check_lack_of_rights(command):
    """A test whose server this user cannot run is a skipped test that says why, wherever it asks for the server."""
    with socketserver.ThreadingTCPServer(("127.0.0.1", 0), Refusing) as controller:
        threading.Thread(target=controller.serve_forever).start()
        code, output = run(command, "*LackingRights*:*LacksRights*", QX_FIXTURE_PORT=str(controller.server_address[1]))
        controller.shutdown()
    expect(code == 77, "tests without rights are not skipped", code, output)
    expect("[  SKIPPED ] 2 tests" in output, "not both are skipped", code, output)
    expect(output.count("nobody may") >= 2, "the reason is not told", code, output)


def main(command):
    check_hang(command, "Hanging.InTheMainThread", 1, QX_TEST_LIMIT="1")
    stacks = check_hang(command, "Hanging.InAnotherThread", 1, QX_TEST_LIMIT="1")
    expect(stacks.count("  thread ") >= 2, "a thread is missing", 42, stacks)
    check_hang(command, "Hanging.WithALimitOfItsOwn", 1)
    check_lack_of_rights(command)
    for test, wanted in (("Ending.Passes", 0), ("Ending.IsSkipped", 77), ("Ending.NoSuchTest", 1)):
        code, output = run(command, test)
        expect(code == wanted, f"{test} does not end with {wanted}", code, output)
    code, output = run(command, "Ending.Crashes")
    expect(code != 0, "a crash looks like a result", code, output)


if __name__ == "__main__":
    main(sys.argv[1:])
