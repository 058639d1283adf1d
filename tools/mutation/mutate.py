#!/usr/bin/python3
"""Mutation testing for the tsxml library.

  mutate.py list   --source DIR [--mutate PATH ...] [--count N] [--out FILE]
  mutate.py run    --source DIR --suite NAME=TESTS_DIR [--suite ...] --out REPORT
                   [--mutate PATH ...] [--count N] [--only ID,ID] [--jobs 2]
                   [--work DIR] [--resume]
  mutate.py report REPORT

`--list` is accepted for `list`. See README.md beside this file.
"""
import argparse, glob, hashlib, json, os, random, re, shutil, signal, subprocess, sys, time

SEED = 20240601
MIN_PER_FILE = 3
TEST_TIMEOUT = 60       # seconds per test, given to ctest
BUILD_TIMEOUT = 1800    # seconds per build
DEFAULT_MUTATE = ["tsxml"]

# --------------------------------------------------------------------------
# Reading C++: for each line, a mask that keeps code characters and replaces
# those of comments and literals with FILL, and the spans of string literals.
FILL = "\x01"


def scan(text):
    masked, spans = list(text), []   # spans: (start, end) offsets of "..." literals
    i, n = 0, len(text)
    while i < n:
        c = text[i]
        if text.startswith("//", i):
            j = text.find("\n", i)
            j = n if j < 0 else j
        elif text.startswith("/*", i):
            j = text.find("*/", i + 2)
            j = n if j < 0 else j + 2
        elif c == '"' and i > 0 and text[i - 1] == "R":          # raw string
            m = re.match(r'R"([^(\s]*)\(', text[i - 1:])
            close = text.find(")" + m.group(1) + '"', i) if m else -1
            j = n if close < 0 else close + len(m.group(1)) + 2
        elif c == '"' or (c == "'" and not (i > 0 and text[i - 1].isalnum())):
            j = i + 1
            while j < n and text[j] != c and text[j] != "\n":
                j += 2 if text[j] == "\\" else 1
            j += 1
            if c == '"':
                spans.append((i, j))
        else:
            i += 1
            continue
        for k in range(i, min(j, n)):
            if text[k] != "\n":
                masked[k] = FILL
        i = j
    return "".join(masked), spans


SCOPE = re.compile(r"\b(class|struct|union|enum|namespace|extern)\b")


def code_lines(text):
    """Yields (number, line, masked line, string spans on the line, context)
    for each line that may be mutated: not a comment, not a preprocessor line
    and not inside static_assert. The context tells the previous code line and
    whether the line starts inside a function body (not a class, namespace or
    enum)."""
    masked, spans = scan(text)
    lines, mlines = text.split("\n"), masked.split("\n")
    starts, pos = [], 0
    for line in lines:
        starts.append(pos)
        pos += len(line) + 1
    by_line = {}
    for s, e in spans:
        no = text.count("\n", 0, s)
        if text.count("\n", s, e) == 0:
            by_line.setdefault(no, []).append((s - starts[no], e - starts[no]))
    in_directive, assert_depth, braces, head, prev = False, 0, [], "", ";"
    for no, (line, m) in enumerate(zip(lines, mlines)):
        code = m.replace(FILL, " ").strip()
        directive = in_directive or code.startswith("#")
        in_directive = directive and m.rstrip().endswith("\\")
        context = {"prev": prev, "body": bool(braces) and braces[-1]}
        for ch in "" if directive else m:
            if ch == "{":
                braces.append(not SCOPE.search(head))
            elif ch == "}" and braces:
                braces.pop()
            head = "" if ch in ";{}" else head + ch
        if code and not directive:
            prev = code
        inside_assert = assert_depth > 0 or "static_assert" in m
        if "static_assert" in m or assert_depth > 0:
            at = m.find("static_assert") if assert_depth == 0 else 0
            for ch in m[at:]:
                assert_depth += {"(": 1, ")": -1}.get(ch, 0)
            assert_depth = max(assert_depth, 0)
        if not code or directive or inside_assert:
            continue
        yield no + 1, line, m, by_line.get(no, []), context


# --------------------------------------------------------------------------
# Mutation operators. Each takes (line, masked line, string spans, context)
# and yields mutated lines; positions come from the masked line, so
# nothing inside a literal or comment is touched unless that is the operator.

def op_compare(line, m, spans, ctx):
    swap = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
    for x in re.finditer(r"(?<![<>=!\-])(<=|>=|==|!=|<|>)(?![<>=])", m):
        tok, s, e = x.group(1), x.start(), x.end()
        if re.search(r"operator\s*$", m[:s]):
            continue
        # A lone < or > only with blanks both sides and never near a
        # template: `a < b`, not `std::vector<int>` or `static_cast<T>(x)`.
        if tok in "<>" and (m[s - 1:s] != " " or m[e:e + 1] != " "
                            or "template" in m or m[:s].rstrip()[-1:] in "<>"):
            continue
        yield line[:s] + swap[tok] + line[e:]


def op_logic(line, m, spans, ctx):
    for x in re.finditer(r"(?<= )(&&|\|\|)(?= )", m):
        yield line[:x.start()] + ("||" if x.group(1) == "&&" else "&&") + line[x.end():]


def op_bool(line, m, spans, ctx):
    for x in re.finditer(r"\b(true|false)\b", m):
        yield line[:x.start()] + ("false" if x.group(1) == "true" else "true") + line[x.end():]


def op_constant(line, m, spans, ctx):
    for x in re.finditer(r"(?<![\w.])(\d+)[uUlLzZ]*(?![\w.'])", m):
        s, e = x.start(1), x.end(1)
        if m[s - 1:s] == "<" or m[x.end():x.end() + 1] == ">":
            continue                      # a template argument: array<T, 4>
        if re.search(r"[\d.][eE][+-]$", m[:s]):
            continue                      # the exponent of 1.5e-6
        if re.search(r"(\)|\bconst|\boverride)\s*=\s*$", m[:s]):
            continue                      # the pure specifier "= 0"
        n = int(x.group(1))
        new = {0: 1, 1: 0}.get(n, n + 1)
        yield line[:s] + str(new) + line[e:]


NAME_LITERAL = re.compile(r'"[A-Za-z_][A-Za-z0-9_:.\-]*"')


def op_string(line, m, spans, ctx):
    for s, e in spans:
        if NAME_LITERAL.fullmatch(line[s:e]) and not m[:s].rstrip().endswith("extern"):
            yield line[:e - 1] + "X" + line[e - 1:]


STATEMENT_KEYWORDS = {"return", "if", "for", "while", "switch", "do", "else",
                      "case", "default", "break", "continue", "goto", "throw",
                      "delete", "new", "using", "typedef", "static_assert",
                      "sizeof", "decltype", "namespace", "template"}
CALL = re.compile(r"[A-Za-z_][\w:.\->\[\]]*\s*\(.*\)\s*;")
ASSIGN = re.compile(r"\*?[A-Za-z_][\w:.\->\[\]*]*\s*(?:[-+*/%&|^]|<<|>>)?=(?!=).*;")
INCDEC = re.compile(r"(\+\+|--)[\w.\->\[\]]+\s*;|[\w.\->\[\]]+(\+\+|--)\s*;")


def op_drop(line, m, spans, ctx):
    """Drops a whole-line call, assignment or ++/--, when the statement starts
    on the line and is not the unbraced body of an if, for or while."""
    code = m.replace(FILL, " ").strip()
    word = re.match(r"\w*", code).group(0)
    if (not ctx["body"] or ctx["prev"][-1:] not in (";", "{", "}", ":")
            or "{" in code or "}" in code
            or word in STATEMENT_KEYWORDS or code.count("(") != code.count(")")):
        return
    if CALL.fullmatch(code) or ASSIGN.fullmatch(code) or INCDEC.fullmatch(code):
        yield ""


def op_negate_if(line, m, spans, ctx):
    for x in re.finditer(r"\bif\s*\(", m):
        open_at, depth = x.end() - 1, 0
        for close in range(open_at, len(m)):
            depth += {"(": 1, ")": -1}.get(m[close], 0)
            if depth == 0:
                break
        cond = m[open_at + 1:close]
        if depth != 0 or ";" in cond or re.search(r"(?<![=!<>])=(?!=)", cond):
            continue   # spans lines, has an init-statement or declares a variable
        yield line[:open_at + 1] + "!(" + line[open_at + 1:close] + ")" + line[close:]


OPERATORS = {"compare": op_compare, "logic": op_logic, "bool": op_bool,
             "constant": op_constant, "string": op_string, "drop": op_drop,
             "negate-if": op_negate_if}


def mutated_files(source, paths=None):
    """The .cpp and .h files that `paths` name under `source`: a directory
    gives every such file beneath it, anything else is a glob pattern
    (`tools/tsxml/*.cpp`, `tsxml/**/*.h`). The library (tsxml/) by default."""
    found = set()
    for path in paths or DEFAULT_MUTATE:
        full = os.path.join(source, path)
        if os.path.isdir(full):
            for d, dirs, files in os.walk(full):
                found |= {os.path.join(d, f) for f in files}
        else:
            matched = glob.glob(full, recursive=True)
            if not matched:
                sys.exit("--mutate %s: no such directory or file" % path)
            found |= set(matched)
    return sorted(os.path.relpath(f, source) for f in found
                  if f.endswith((".cpp", ".h")) and os.path.isfile(f))


def all_mutants(source, paths=None):
    mutants = []
    for rel in mutated_files(source, paths):
        with open(os.path.join(source, rel), encoding="utf-8") as f:
            text = f.read()
        seen = set()
        for no, line, m, spans, ctx in code_lines(text):
            for name, op in OPERATORS.items():
                for new in op(line, m, spans, ctx):
                    if new == line or (no, new) in seen:
                        continue
                    seen.add((no, new))
                    key = "\0".join([rel, str(no), name, new]).encode()
                    mutants.append({"id": hashlib.sha1(key).hexdigest()[:8],
                                    "file": rel, "line": no, "operator": name,
                                    "original": line, "mutated": new})
    return mutants


def select(mutants, count, seed=SEED):
    """`count` mutants spread over the files in proportion to their mutable
    lines, and at least MIN_PER_FILE (or all it has) from each file when
    `count` allows. Within a file, lines are drawn before second mutants of a
    line."""
    if count >= len(mutants):
        return list(mutants)
    by_file = {}
    for mu in mutants:
        by_file.setdefault(mu["file"], []).append(mu)
    files = sorted(by_file)
    lines = {f: len({mu["line"] for mu in by_file[f]}) for f in files}
    total = sum(lines.values())
    floor = min(MIN_PER_FILE, count // len(files))   # 0 when files outnumber count
    want = {f: count * lines[f] / total for f in files}
    quota = {f: min(len(by_file[f]), max(floor, round(want[f]))) for f in files}
    while sum(quota.values()) > count:
        f = max((f for f in files if quota[f] > min(floor, len(by_file[f]))),
                key=lambda f: (quota[f] - want[f], f))
        quota[f] -= 1
    while sum(quota.values()) < count:
        f = max((f for f in files if quota[f] < len(by_file[f])),
                key=lambda f: (want[f] - quota[f], f))
        quota[f] += 1
    chosen = []
    for f in files:
        rng = random.Random("%s:%s" % (seed, f))
        groups = {}
        for mu in by_file[f]:
            groups.setdefault(mu["line"], []).append(mu)
        order = sorted(groups)
        rng.shuffle(order)
        for g in groups.values():
            rng.shuffle(g)
        # One mutant per line first, then a second from each line, and so on.
        rounds = [groups[no][k] for k in range(max(map(len, groups.values())))
                  for no in order if k < len(groups[no])]
        chosen += rounds[:quota[f]]
    return sorted(chosen, key=lambda mu: (mu["file"], mu["line"], mu["id"]))


def pick(source, count, only, paths=None):
    mutants = all_mutants(source, paths)
    if only:
        ids = set(only.split(","))
        picked = [mu for mu in mutants if mu["id"] in ids]
        missing = ids - {mu["id"] for mu in picked}
        if missing:
            sys.exit("unknown mutant ids: " + ", ".join(sorted(missing)))
        return picked
    return select(mutants, count)


# --------------------------------------------------------------------------
# Running.

def sh(cmd, cwd=None, env=None, timeout=None):
    """Runs cmd in a process group of its own; (exit code, output). A time-out
    kills the whole group and gives code None."""
    p = subprocess.Popen(cmd, cwd=cwd, env=env, stdout=subprocess.PIPE,
                         stderr=subprocess.STDOUT, start_new_session=True)
    try:
        out, _ = p.communicate(timeout=timeout)
        return p.returncode, out.decode(errors="replace")
    except subprocess.TimeoutExpired:
        os.killpg(p.pid, signal.SIGKILL)
        out, _ = p.communicate()
        return None, out.decode(errors="replace")
    except BaseException:              # interrupted: take the children along
        os.killpg(p.pid, signal.SIGKILL)
        p.wait()
        raise


class Suite:
    def __init__(self, name, tests, source, work, env, jobs, cmake_args=()):
        self.name, self.tests, self.env, self.jobs = name, tests, env, jobs
        self.cmake_args = list(cmake_args)
        self.src = os.path.join(work, "suites", name, "src")
        self.build = os.path.join(work, "suites", name, "build")
        self.source, self.pending = source, None   # pending: (path, original text)
        self.ninja = shutil.which("ninja") is not None

    def prepare(self):
        shutil.rmtree(os.path.dirname(self.src), ignore_errors=True)

        def ignore(d, names):
            top = os.path.abspath(d) == os.path.abspath(self.source)
            return [n for n in names if n == ".git" or (top and (
                n == "tests" or os.path.exists(os.path.join(d, n, "CMakeCache.txt"))))]
        shutil.copytree(self.source, self.src, ignore=ignore, symlinks=True)
        shutil.copytree(self.tests, os.path.join(self.src, "tests"), symlinks=True)
        with open(os.path.join(self.src, "CMakeLists.txt")) as f:
            options = re.findall(r"option\(\s*(\w+)", f.read())
        cmd = ["cmake", "-S", self.src, "-B", self.build, "-DCMAKE_BUILD_TYPE=Debug",
               "-DTSXML_BUILD_TESTS=ON", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
        cmd += ["-D%s=OFF" % o for o in options if o.endswith(("_EXAMPLES", "_WERROR"))]
        cmd += ["-G", "Ninja"] if self.ninja else []
        cmd += self.cmake_args  # later -D settings win
        code, out = sh(cmd, env=self.env, timeout=BUILD_TIMEOUT)
        if code != 0:
            sys.exit("[%s] configure failed:\n%s" % (self.name, out[-4000:]))
        ok, out = self.compile()
        if not ok:
            sys.exit("[%s] the unmutated tree does not build:\n%s" % (self.name, out[-4000:]))
        code, out = sh(["ctest", "--show-only=json-v1"], cwd=self.build, env=self.env)
        self.commands, self.runs = {}, {}
        for t in json.loads(out)["tests"]:
            where = [p["value"] for p in t.get("properties", [])
                     if p["name"] == "WORKING_DIRECTORY"]
            if t.get("command") and where and self.in_tests(where[0]):
                self.commands[t["name"]] = t["command"][0]
                self.runs[t["name"]] = self.programs_run(t["command"])
        self.stamps = self.stamp()
        t0 = time.time()
        killed, failed, out = self.ctest(list(self.commands))
        if killed:
            sys.exit("[%s] tests fail on the unmutated tree: %s\n%s"
                     % (self.name, ", ".join(failed), out[-4000:]))
        progress("[%s] baseline: %d tests pass in %.1fs"
                 % (self.name, len(self.commands), time.time() - t0))

    def in_tests(self, path):
        # Only the suite's own tests: those whose build directory is under
        # tests/ (tests/tools is added from the top, not from tests/), not
        # what other folders (fuzz/, python/) register.
        tests = os.path.realpath(os.path.join(self.build, "tests"))
        return (os.path.realpath(path) + os.sep).startswith(tests + os.sep)

    def test_dirs(self):
        # The build directories under tests/ that register tests.
        found = []
        for d, dirs, files in os.walk(os.path.join(self.build, "tests")):
            dirs[:] = sorted(n for n in dirs if n != "CMakeFiles")
            if "CTestTestfile.cmake" in files:
                found.append(os.path.relpath(d, self.build))
        return found or ["tests"]

    def compile(self):
        target = []
        if self.ninja:
            for d in self.test_dirs():
                target += ["--target", d + "/all"]
        code, out = sh(["cmake", "--build", self.build, "-j", str(self.jobs)] + target,
                       env=self.env, timeout=BUILD_TIMEOUT)
        return code == 0, out

    def programs(self):
        """The programs built in the build tree (executable ELF files)."""
        found = []
        for d, dirs, files in os.walk(self.build):
            dirs[:] = [n for n in dirs if n != "CMakeFiles"]
            for f in files:
                path = os.path.join(d, f)
                if os.access(path, os.X_OK) and os.path.isfile(path):
                    with open(path, "rb") as g:
                        if g.read(4) == b"\x7fELF":
                            found.append(os.path.realpath(path))
        return found

    def programs_run(self, command):
        """The built programs that a test runs: its own, those named in its
        arguments, and those whose path its program holds (a test of a
        command-line tool runs the tool, whose path is compiled in)."""
        built = self.programs()
        runs = {os.path.realpath(a) for a in command} & set(built)
        own = os.path.realpath(command[0])
        if own in built:
            with open(own, "rb") as f:
                data = f.read()
            runs |= {p for p in built if os.fsencode(p) in data}
        return runs

    def stamp(self):
        def mtime(path):
            try:
                return os.stat(path).st_mtime_ns
            except OSError:
                return None
        return {p: mtime(p) for runs in self.runs.values() for p in runs}

    def ctest(self, names):
        regex = "^(%s)$" % "|".join(re.escape(n) for n in names)
        cmd = ["ctest", "--stop-on-failure", "--timeout", str(TEST_TIMEOUT),
               "-j", str(self.jobs), "--no-tests=error", "-R", regex]
        code, out = sh(cmd, cwd=self.build, env=self.env,
                       timeout=TEST_TIMEOUT * len(names) + 120)
        failed = re.findall(r"^\s*\d+ - (\S+) \(", out, re.M)
        return code != 0, failed, out

    def restore(self):
        if self.pending:
            path, text = self.pending
            with open(path, "w", encoding="utf-8") as f:
                f.write(text)
            self.pending = None

    def try_mutant(self, mu):
        """Applies mu, builds and runs the tests whose programs were relinked
        (a program that did not relink cannot see the mutant). Returns
        (status, failed tests, detail)."""
        self.restore()
        path = os.path.join(self.src, mu["file"])
        with open(path, encoding="utf-8") as f:
            text = f.read()
        lines = text.split("\n")
        if lines[mu["line"] - 1] != mu["original"]:
            sys.exit("%s:%d differs from the mutant's original line" % (mu["file"], mu["line"]))
        lines[mu["line"] - 1] = mu["mutated"]
        self.pending = (path, text)
        with open(path, "w", encoding="utf-8") as f:
            f.write("\n".join(lines))
        ok, out = self.compile()
        before, self.stamps = self.stamps, self.stamp()
        if not ok:
            errors = [l for l in out.splitlines() if "error" in l]
            return "build-failed", [], (errors or out.splitlines()[-1:] or [""])[0][:300]
        changed = {p for p, t in self.stamps.items() if t is None or t != before[p]}
        names = [n for n, cmd in self.commands.items()
                 if self.runs[n] & changed
                 or not os.path.realpath(cmd).startswith(os.path.realpath(self.build))]
        if not names:
            return "survived", [], "no test program depends on the file"
        killed, failed, _ = self.ctest(names)
        return ("killed" if killed else "survived"), failed, "ran %d tests" % len(names)


def progress(msg):
    print(msg, file=sys.stderr, flush=True)


def clock(seconds):
    seconds = int(seconds)
    return "%dh%02dm%02ds" % (seconds // 3600, seconds // 60 % 60, seconds % 60)


def save(report, path):
    tmp = path + ".tmp"
    with open(tmp, "w") as f:
        json.dump(report, f, indent=1)
    os.replace(tmp, path)


def run(args):
    source = os.path.abspath(args.source)
    suites = []
    for spec in args.suite:
        name, _, tests = spec.partition("=")
        if not re.fullmatch(r"[\w.-]+", name) or not os.path.isdir(tests):
            sys.exit("--suite wants NAME=TESTS_DIR with an existing directory: " + spec)
        suites.append((name, os.path.abspath(tests)))
    if len({n for n, _ in suites}) != len(suites):
        sys.exit("--suite names must differ")
    mutants = pick(source, args.count, args.only, args.mutate)
    report = {"source": source, "mutate": args.mutate or DEFAULT_MUTATE,
              "suites": [{"name": n, "tests": t} for n, t in suites],
              "selected": len(mutants), "results": []}
    if args.resume and os.path.exists(args.out):
        with open(args.out) as f:
            old = json.load(f)
        if [s["name"] for s in old["suites"]] != [n for n, _ in suites]:
            sys.exit("--resume: %s was run with other suites" % args.out)
        wanted = {mu["id"] for mu in mutants}
        report["results"] = [r for r in old["results"] if r["id"] in wanted]
    done = {r["id"] for r in report["results"]}
    todo = [mu for mu in mutants if mu["id"] not in done]

    work = os.path.abspath(args.work)
    os.makedirs(work, exist_ok=True)
    env = dict(os.environ, CCACHE_DIR=os.path.join(work, "ccache"), CCACHE_BASEDIR=work,
               CCACHE_NOHASHDIR="1", CCACHE_SLOPPINESS="include_file_mtime,include_file_ctime")
    runners = [Suite(n, t, source, work, env, args.jobs, args.cmake_arg) for n, t in suites]
    progress("%d mutants selected, %d to run" % (len(mutants), len(todo)))
    if not todo:
        save(report, args.out)
        return
    for s in runners:
        s.prepare()
    save(report, args.out)
    start = time.time()
    try:
        for k, mu in enumerate(todo, 1):
            result = dict(mu, status={}, failed={}, detail={}, seconds={})
            for s in runners:
                t0 = time.time()
                if "build-failed" in result["status"].values():
                    status, failed, detail = "skipped", [], ""
                else:
                    status, failed, detail = s.try_mutant(mu)
                result["status"][s.name], result["failed"][s.name] = status, failed
                result["detail"][s.name] = detail
                result["seconds"][s.name] = round(time.time() - t0, 1)
            report["results"].append(result)
            save(report, args.out)
            elapsed = time.time() - start
            tally = summarize(report)
            progress("[%d/%d] %s %s:%d %-9s %s | %s | build-failed %d | %s elapsed, ETA %s" % (
                len(report["results"]), len(mutants), mu["id"], mu["file"], mu["line"],
                mu["operator"], " ".join("%s=%s" % kv for kv in result["status"].items()),
                ", ".join("%s killed %d survived %d" % (n, t["killed"], t["survived"])
                          for n, t in tally["suites"].items()),
                tally["build_failed"], clock(elapsed), clock(elapsed / k * (len(todo) - k))))
    finally:
        for s in runners:
            s.restore()


# --------------------------------------------------------------------------
# Reporting.

def summarize(report):
    names = [s["name"] for s in report["suites"]]
    counted = [r for r in report["results"]
               if not set(r["status"].values()) & {"build-failed", "skipped"}]
    suites = {n: {"killed": sum(r["status"][n] == "killed" for r in counted),
                  "survived": sum(r["status"][n] == "survived" for r in counted)}
              for n in names}
    gap = []
    if len(names) > 1:
        gap = [r for r in counted
               if r["status"][names[0]] == "killed" and r["status"][names[1]] != "killed"]
    return {"counted": counted, "build_failed": len(report["results"]) - len(counted),
            "suites": suites, "gap": gap}


def show(text):
    return "`%s`" % text.strip().replace("`", "'") if text.strip() else "(line dropped)"


def report_cmd(args):
    with open(args.report) as f:
        report = json.load(f)
    tally, results = summarize(report), report["results"]
    names = [s["name"] for s in report["suites"]]
    seconds = sum(sum(r["seconds"].values()) for r in results)
    print("# Mutation testing\n")
    print("| | count |\n|---|---|")
    print("| mutants selected | %d |" % report["selected"])
    print("| mutants run | %d |" % len(results))
    print("| build-failed (not counted) | %d |" % tally["build_failed"])
    print("| counted | %d |" % len(tally["counted"]))
    for n in names:
        t, c = tally["suites"][n], max(1, len(tally["counted"]))
        print("| killed by `%s` | %d (%.0f%%), %d survived |"
              % (n, t["killed"], 100.0 * t["killed"] / c, t["survived"]))
    if results:
        print("| seconds per mutant (all suites) | %.1f |" % (seconds / len(results)))
    if len(names) < 2:
        return 0
    print("\n## Killed by `%s` but not by `%s`: %d\n" % (names[0], names[1], len(tally["gap"])))
    for r in tally["gap"]:
        print("- `%s` %s:%d %s: %s → %s (%s)" % (
            r["id"], r["file"], r["line"], r["operator"], show(r["original"]),
            show(r["mutated"]), ", ".join(r["failed"][names[0]]) or "failed"))
    return 1 if tally["gap"] else 0


def main(argv):
    argv = ["list" if a == "--list" else a for a in argv[:1]] + argv[1:]
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    sub = ap.add_subparsers(dest="command", required=True)
    ls = sub.add_parser("list", help="write the mutants as JSON")
    ru = sub.add_parser("run", help="run mutants against test suites")
    for p in (ls, ru):
        p.add_argument("--source", required=True, help="checkout whose files are mutated")
        p.add_argument("--count", type=int, default=260)
        p.add_argument("--only", help="comma-separated mutant ids (any, not only the selected)")
        p.add_argument("--mutate", action="append", metavar="PATH",
                       help="a directory or glob pattern under --source whose .cpp and .h "
                            "files are mutated, e.g. tools/tsxml or 'tools/tsxml/*.cpp' "
                            "(repeatable; default: tsxml)")
    ls.add_argument("--all", action="store_true", help="every mutant, no selection")
    ls.add_argument("--out", help="file to write (default: standard output)")
    ru.add_argument("--suite", action="append", required=True, metavar="NAME=TESTS_DIR")
    ru.add_argument("--out", required=True, help="report JSON, rewritten after each mutant")
    ru.add_argument("--jobs", type=int, default=2)
    ru.add_argument("--cmake-arg", action="append", default=[], metavar="ARG",
                    help="one more argument for cmake's configure step, e.g. "
                         "-DCMAKE_CXX_COMPILER=clang++ (repeatable)")
    ru.add_argument("--work", default="/tmp/tsxml-mutation",
                    help="scratch copies, builds and the shared ccache")
    ru.add_argument("--resume", action="store_true", help="keep results already in --out")
    rp = sub.add_parser("report", help="Markdown summary; exit 1 on a gap")
    rp.add_argument("report")
    args = ap.parse_args(argv)
    if args.command == "list":
        mutants = (all_mutants(args.source, args.mutate) if args.all
                   else pick(args.source, args.count, args.only, args.mutate))
        text = json.dumps(mutants, indent=1) + "\n"
        if args.out:
            with open(args.out, "w") as f:
                f.write(text)
        else:
            sys.stdout.write(text)
        return 0
    if args.command == "run":
        try:
            run(args)
        except KeyboardInterrupt:
            progress("interrupted; results so far are in %s, --resume goes on" % args.out)
            return 130
        return 0
    return report_cmd(args)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
