#!/usr/bin/python3
"""Picture fidelity of metafile2svg's two modes and of the peers, per file and per folder.

Run through scripts/fidelity.sh (which checks the tools and finds the fonts wmf2svg needs);
docs/fidelity.md describes the options and the outputs. Each metafile is converted with
  faithful   metafile2svg $FAITHFUL_ARGS FILE -o OUT   (FAITHFUL_ARGS, default --faithful)
  contract   metafile2svg $CONTRACT_ARGS FILE -o OUT   (CONTRACT_ARGS, default --contract)
  peer       emf2svg-conv -i F.emf -o F.svg, or wmf2svg --inline -o F.svg F.wmf
and every SVG is scored against LibreOffice's picture of the metafile by the shared score.py,
imported as a module so that LibreOffice starts once for all files (references are cached by
content hash in the work folder).
"""
import argparse
import concurrent.futures
import hashlib
import html
import math
import os
import shlex
import shutil
import signal
import subprocess
import sys
import threading
import time
import types

MODES = ("faithful", "contract", "peer")
PARTS = ("score", "ink", "edge", "color")
MARGIN = 0.02  # score difference below which two columns count as equal


def die(message):
    print("fidelity: " + message, file=sys.stderr)
    sys.exit(2)


def load_score_module(path):
    sys.dont_write_bytecode = True  # no __pycache__ beside the shared scorer
    module = types.ModuleType("fidelity_score")
    module.__file__ = str(path)
    sys.modules[module.__name__] = module
    with open(path, encoding="utf-8") as source:
        exec(compile(source.read(), str(path), "exec"), module.__dict__)
    return module


def is_metafile(name):
    return name.lower().endswith((".emf", ".wmf"))


def collect(inputs, corpus):
    """Metafiles of the given files and folders (folders: their own .emf/.wmf files)."""
    files = []
    for item in inputs:
        path = item
        if not os.path.isabs(item) and os.path.exists(os.path.join(corpus, item)):
            path = os.path.join(corpus, item)  # corpus names first: "emf" is also a source folder
        if os.path.isdir(path):
            files += sorted(os.path.join(path, n) for n in os.listdir(path) if is_metafile(n)
                            and os.path.isfile(os.path.join(path, n)))
        elif os.path.isfile(path):
            files.append(path)
        else:
            die("no such file or folder: %s" % item)
    return files


def read_list(path):
    with open(path, encoding="utf-8") as f:
        return [ln.split("#", 1)[0].strip() for ln in f if ln.split("#", 1)[0].strip()]


class Item:
    """One metafile: its outputs, statuses and scores per mode."""

    def __init__(self, path, key):
        self.path = path
        self.key = key  # FOLDER/NAME, unique in the run
        self.folder = os.path.basename(os.path.dirname(os.path.abspath(path)))
        self.kind = "wmf" if path.lower().endswith(".wmf") else "emf"
        self.svg = {}  # mode -> SVG path relative to the output folder
        self.status = {}  # mode -> "" when converted, else what went wrong
        self.png = {}  # "ref" or mode -> PNG path relative to the output folder
        self.scores = {}  # mode -> {part: float}
        self.ref = "failed"  # "yes" (blank), "no", "failed" (LibreOffice could not draw it)

    def get(self, mode, part="score"):
        s = self.scores.get(mode)
        return s[part] if s else float("nan")


def unique_keys(paths):
    keys, seen = [], {}
    for p in paths:
        key = "%s/%s" % (os.path.basename(os.path.dirname(os.path.abspath(p))), os.path.basename(p))
        n = seen.get(key, 0)
        seen[key] = n + 1
        keys.append(key if n == 0 else "%s~%d" % (key, n))
    return keys


# ---------------------------------------------------------------- conversion

def run(cmd, out, timeout):
    """Runs a converter; returns "" when it wrote a non-empty OUT, else what went wrong."""
    if os.path.exists(out):
        os.remove(out)
    env = dict(os.environ, LIBLOGGING_LEVEL="OFF")
    try:
        r = subprocess.run(cmd, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                           stderr=subprocess.PIPE, timeout=timeout, env=env)
    except subprocess.TimeoutExpired:
        return "timeout %gs" % timeout
    except OSError as e:
        return "cannot run: %s" % e
    if r.returncode < 0:
        try:
            name = signal.Signals(-r.returncode).name
        except ValueError:
            name = "signal %d" % -r.returncode
        return "crashed (%s)" % name
    if r.returncode != 0:
        return "exit %d" % r.returncode
    if not os.path.exists(out) or os.path.getsize(out) == 0:
        return "no output"
    return ""


def commands(item, out_svg, a):
    """The command line of each mode for one item (peer: None when no peer is installed)."""
    cmds = {
        "faithful": [a.converter] + a.faithful_args + [item.path, "-o", out_svg["faithful"]],
        "contract": [a.converter] + a.contract_args + [item.path, "-o", out_svg["contract"]],
    }
    if item.kind == "emf" and a.emf_peer:
        cmds["peer"] = [a.emf_peer, "-i", item.path, "-o", out_svg["peer"]]
    elif item.kind == "wmf" and a.wmf_peer:
        fonts = ["--wmf-fontdir=" + a.wmf_fontdir] if a.wmf_fontdir else []
        cmds["peer"] = [a.wmf_peer] + fonts + ["--inline", "-o", out_svg["peer"], item.path]
    return {m: c for m, c in cmds.items() if m in a.modes}


def convert_all(items, a):
    tasks = []
    for item in items:
        out_svg = {m: os.path.join(a.out, "svg", m, item.key + ".svg") for m in MODES}
        for mode, cmd in commands(item, out_svg, a).items():
            os.makedirs(os.path.dirname(out_svg[mode]), exist_ok=True)
            item.svg[mode] = os.path.relpath(out_svg[mode], a.out)
            timeout = a.timeout if mode == "peer" else a.timeout * 2
            tasks.append((item, mode, cmd, out_svg[mode], timeout))
    with concurrent.futures.ThreadPoolExecutor(a.jobs) as pool:
        futures = {pool.submit(run, cmd, out, t): (item, mode) for item, mode, cmd, out, t in tasks}
        for f in concurrent.futures.as_completed(futures):
            item, mode = futures[f]
            item.status[mode] = f.result()


# ---------------------------------------------------------------- scoring

def own_soffice():
    """Ids of the LibreOffice processes this process started (score.py names its pipe after us)."""
    mark = ("pipe,name=fidelity%d;" % os.getpid()).encode()
    pids = []
    for d in os.listdir("/proc"):
        try:
            if d.isdigit() and mark in open("/proc/%s/cmdline" % d, "rb").read():
                pids.append(int(d))
        except OSError:
            pass
    return pids


def render_refs(sc, paths, a, attempts=4):
    """score.py's reference rendering, tried again when LibreOffice starts too slowly to connect
    (a fresh profile on a busy machine). The slow LibreOffice is left to finish starting: the
    next attempt's LibreOffice hands over to it (same profile) and connects to its pipe (named
    after this process). Whatever is left at the end is ended."""
    try:
        for n in range(1, attempts + 1):
            try:
                sc.render_refs(paths, a.workdir, a.size)
                return
            except Exception as e:
                print("fidelity: references, attempt %d: %s" % (n, e), file=sys.stderr)
    finally:
        for pid in own_soffice():
            try:
                os.kill(pid, signal.SIGKILL)
            except OSError:
                pass


def check_fonts(workdir):
    """Empties the reference cache when the installed fonts changed since it was filled: the cache
    is keyed by the metafile's bytes only, yet fonts change both the references and our pictures."""
    try:
        fonts = subprocess.run(["fc-list"], capture_output=True, text=True).stdout
    except OSError:
        return
    fingerprint = hashlib.sha1("\n".join(sorted(fonts.splitlines())).encode()).hexdigest()
    stamp = os.path.join(workdir, "fonts.sha1")
    old = open(stamp).read().strip() if os.path.exists(stamp) else None
    refs = os.path.join(workdir, "ref")
    if old != fingerprint and os.path.isdir(refs) and os.listdir(refs):
        print("fidelity: the fonts changed since the references were drawn; drawing them again",
              file=sys.stderr)
        shutil.rmtree(refs)
    with open(stamp, "w") as f:
        f.write(fingerprint + "\n")


def score_item(item, sc, a):
    rp = sc.ref_path(a.workdir, item.path, a.size)
    if not os.path.exists(rp):
        item.ref = "failed"
        return
    ref_png = os.path.join(a.out, "png", "ref", item.key + ".png")
    os.makedirs(os.path.dirname(ref_png), exist_ok=True)
    shutil.copyfile(rp, ref_png)
    item.png["ref"] = os.path.relpath(ref_png, a.out)
    ref = sc.load_rgb(rp)
    item.ref = "no" if sc.ink(ref).any() else "yes"
    h, w = ref.shape[:2]
    radius = max(2, round(0.006 * math.hypot(w, h)))  # score.py's default
    seen = {}  # SVG bytes -> the mode scored with them (two modes often write the same)
    for mode, svg in item.svg.items():
        data = None
        if not item.status.get(mode):
            with open(os.path.join(a.out, svg), "rb") as f:
                data = f.read()
            if data in seen:
                item.scores[mode] = dict(item.scores[seen[data]])
                item.status[mode] = item.status.get(seen[data], "")
                if seen[data] in item.png:
                    item.png[mode] = item.png[seen[data]]
                continue
            seen[data] = mode
        png = os.path.join(a.out, "png", mode, item.key + ".png")
        os.makedirs(os.path.dirname(png), exist_ok=True)
        if os.path.exists(png):
            os.remove(png)
        cand = None
        if not item.status.get(mode):
            try:
                cand = sc.render_svg(os.path.join(a.out, svg), png, w, h)
            except Exception as e:  # a hanging or failing renderer scores 0
                print("fidelity: rendering %s: %s" % (svg, e), file=sys.stderr)
            if cand is None:
                item.status[mode] = "unrenderable"
        if cand is None:
            item.scores[mode] = {p: 0.0 for p in PARTS}
        else:
            item.png[mode] = os.path.relpath(png, a.out)
            res = sc.compare(ref, cand, radius)
            item.scores[mode] = {p: float(res[p]) for p in PARTS}


# ---------------------------------------------------------------- summary

def mean(values):
    values = [v for v in values if v == v]
    return sum(values) / len(values) if values else float("nan")


def summarise(items, modes):
    """One row per folder and one for all: counts, means and the two comparisons."""
    folders = sorted({i.folder for i in items})
    rows = []
    groups = [(f, [i for i in items if i.folder == f]) for f in folders]
    if len(folders) > 1:
        groups.append(("all", items))
    for name, group in groups:
        drawn = [i for i in group if i.ref == "no"]
        row = dict(folder=name, files=len(group), drawn=len(drawn))
        for m in modes:
            row[m] = mean(i.get(m) for i in drawn if m in i.scores)
        if "contract" in modes:
            row["worse"] = sum(1 for i in drawn if i.get("faithful") < i.get("contract") - MARGIN)
        if "peer" in modes:
            with_peer = [i for i in drawn if "peer" in i.scores]
            row["peers"] = len(with_peer)
            row["asgood"] = sum(1 for i in with_peer if i.get("faithful") >= i.get("peer") - MARGIN)
        rows.append(row)
    return rows


def fmt(v):
    return "—" if v != v else "%.3f" % v


def markdown(rows, modes):
    head = ["folder", "files", "drawn"] + ["%s mean" % m for m in modes]
    if "contract" in modes:
        head.append("faithful < contract − %.2f" % MARGIN)
    if "peer" in modes:
        head.append("faithful ≥ peer − %.2f" % MARGIN)
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    for r in rows:
        cells = [r["folder"], str(r["files"]), str(r["drawn"])] + [fmt(r[m]) for m in modes]
        if "contract" in modes:
            cells.append(str(r["worse"]))
        if "peer" in modes:
            cells.append("%d of %d" % (r["asgood"], r["peers"]))
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def write_tsv(items, modes, path):
    head = ["file", "folder", "ref_blank"]
    for m in modes:
        head += ["%s_%s" % (m, p) for p in PARTS] + ["%s_status" % m]
    with open(path, "w", encoding="utf-8") as f:
        f.write("\t".join(head) + "\n")
        for i in items:
            cells = [i.key, i.folder, i.ref]
            for m in modes:
                if m in i.scores:
                    cells += ["%.3f" % i.get(m, p) for p in PARTS] + [i.status.get(m) or "ok"]
                else:  # no reference, or no peer for this format
                    cells += [""] * len(PARTS) + [i.status.get(m) or
                                                  ("ok" if m in i.svg else "n/a")]
            f.write("\t".join(cells) + "\n")


# ---------------------------------------------------------------- page

PAGE_HEAD = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Fidelity: %(title)s</title>
<style>
body{font:14px/1.4 sans-serif;margin:1em 2em;color:#222}
table{border-collapse:collapse}td,th{border:1px solid #ccc;padding:2px 8px;text-align:right}
th:first-child,td:first-child{text-align:left}
.bar{position:sticky;top:0;background:#fff;padding:.4em 0;border-bottom:1px solid #ccc;z-index:1}
section{border-bottom:1px solid #ddd;padding:.6em 0}
section h3{margin:0 0 .3em;font-size:15px}
.row{display:grid;grid-template-columns:repeat(%(ncols)d,1fr);gap:8px}
figure{margin:0}figcaption{font-size:12px;color:#555}
figure img{width:100%%;max-height:360px;object-fit:contain;background:#fff;
border:1px solid #bbb;display:block}
.fail{color:#b00;font-weight:bold}.none{height:80px;border:1px dashed #bbb}
.lo{color:#b00}.hi{color:#070}.blank{opacity:.6}
</style></head><body>
<h1>Picture fidelity: %(title)s</h1>
<p>%(info)s</p>
"""

PAGE_SCRIPT = """<script>
function order(key){
  var box=document.getElementById('files');
  var s=[].slice.call(box.children);
  s.sort(function(a,b){
    if(key==='name')return a.dataset.name<b.dataset.name?-1:1;
    var d=parseFloat(a.dataset[key])-parseFloat(b.dataset[key]);
    return d||(a.dataset.name<b.dataset.name?-1:1);
  });
  s.forEach(function(e){box.appendChild(e)});
}
function blanks(show){
  [].forEach.call(document.querySelectorAll('section.blank'),function(e){e.hidden=!show});
}
</script></body></html>
"""


def sort_value(v):
    return "%.4f" % v if v == v else "9"  # undefined sorts last


def write_page(items, modes, rows, info, title, path):
    esc = html.escape
    cols = ["ref"] + list(modes)
    out = [PAGE_HEAD % dict(title=esc(title), info=info, ncols=len(cols))]
    out.append(markdown_table_html(rows, modes))
    keys = [("faithful", "worst faithful first")]
    if "peer" in modes and "faithful" in modes:
        keys.append(("vspeer", "faithful − peer"))
    if "contract" in modes and "faithful" in modes:
        keys.append(("vscontract", "faithful − contract"))
    keys.append(("name", "name"))
    out.append('<div class="bar">Order: ' + " · ".join(
        '<a href="#" onclick="order(\'%s\');return false">%s</a>' % k for k in keys) +
        ' &nbsp; <label><input type="checkbox" checked onchange="blanks(this.checked)">'
        ' files with a blank or failed reference</label></div>')
    items = sorted(items, key=lambda i: (i.ref != "no", float(sort_value(i.get("faithful"))),
                                         i.key))
    out.append('<div id="files">')
    for i in items:
        drawn = i.ref == "no"
        data = dict(name=i.key, faithful=i.get("faithful") if drawn else float("nan"),
                    vspeer=i.get("faithful") - i.get("peer") if drawn else float("nan"),
                    vscontract=i.get("faithful") - i.get("contract") if drawn else float("nan"))
        attrs = " ".join('data-%s="%s"' % (k, esc(v if k == "name" else sort_value(v)))
                         for k, v in data.items())
        note = "" if drawn else (' <span class="fail">LibreOffice drew nothing</span>'
                                 if i.ref == "failed" else " (blank reference)")
        out.append('<section %s%s><h3>%s%s</h3><div class="row">' %
                   (attrs, "" if drawn else ' class="blank"', esc(i.key), note))
        for c in cols:
            out.append(figure(i, c, esc))
        out.append("</div></section>")
    out.append("</div>")
    out.append(PAGE_SCRIPT)
    with open(path, "w", encoding="utf-8") as f:
        f.write("\n".join(out))


def picture(link, img, alt, esc):
    if not img:
        return '<div class="none"></div>'
    return '<a href="%s"><img loading="lazy" src="%s" alt="%s"></a>' % (esc(link), esc(img), alt)


def figure(item, col, esc):
    if col == "ref":
        body = picture(item.png.get("ref"), item.png.get("ref"), "reference", esc)
        return "<figure>%s<figcaption>reference (LibreOffice)</figcaption></figure>" % body
    if col not in item.svg:
        return ('<figure><div class="none"></div><figcaption>%s: none for %s</figcaption>'
                '</figure>' % (col, item.kind.upper()))
    status = item.status.get(col)
    body = picture(item.svg[col], item.png.get(col), col, esc)
    s = item.scores.get(col, {})
    score = s.get("score", float("nan"))
    cls = "lo" if score < 0.7 else "hi" if score >= 0.9 else ""
    cap = '%s <b class="%s">%s</b> <small>ink %s edge %s color %s</small>' % (
        col, cls, fmt(score), fmt(s.get("ink", float("nan"))), fmt(s.get("edge", float("nan"))),
        fmt(s.get("color", float("nan"))))
    if status:
        cap += ' <span class="fail">%s</span>' % esc(status)
    return "<figure>%s<figcaption>%s</figcaption></figure>" % (body, cap)


def markdown_table_html(rows, modes):
    lines = markdown(rows, modes).splitlines()
    cells = [[c.strip() for c in ln.strip("|").split("|")] for ln in lines]
    out = ["<table><tr>" + "".join("<th>%s</th>" % html.escape(c) for c in cells[0]) + "</tr>"]
    for r in cells[2:]:
        out.append("<tr>" + "".join("<td>%s</td>" % html.escape(c) for c in r) + "</tr>")
    return "\n".join(out) + "</table>"


# ---------------------------------------------------------------- main

def main():
    ap = argparse.ArgumentParser(
        description="Converts metafiles with metafile2svg (faithful and contract) and the peers, "
                    "scores every SVG against LibreOffice's picture, writes fidelity.tsv and "
                    "index.html into the output folder and prints a summary per folder.")
    ap.add_argument("inputs", nargs="*", metavar="FILE|FOLDER",
                    help="metafiles or folders (default: emf mixed wmf of the corpus); "
                         "relative names are looked up in the corpus first")
    ap.add_argument("--build", default="build", help="build folder holding metafile2svg")
    ap.add_argument("--out", default="out/fidelity", help="output folder (default out/fidelity)")
    ap.add_argument("--workdir", help="score.py's work folder, where references are cached "
                                      "(default OUT/work)")
    ap.add_argument("--corpus", default=os.environ.get("CORPUS", "../shared/corpus"))
    ap.add_argument("--score", default=os.environ.get("FIDELITY_SCORE",
                                                      "../shared/fidelity/score.py"))
    ap.add_argument("--list", help="a file naming the metafiles, one a line (# comments)")
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--timeout", type=float, default=30, help="seconds a peer may take "
                    "(metafile2svg: twice that)")
    ap.add_argument("--size", type=int, default=800, help="longer side of the pictures")
    ap.add_argument("--no-peers", action="store_true")
    ap.add_argument("--no-contract", action="store_true")
    ap.add_argument("--gate", type=float, metavar="MIN",
                    help="faithful mode only, on the files named (default: the list "
                         "scripts/fidelity_gate.txt); exit 1 when its mean is below MIN")
    ap.add_argument("--wmf-fontdir", default=os.environ.get("WMF_FONTDIR"))
    a = ap.parse_args()

    started = time.time()
    a.converter = os.path.join(a.build, "metafile2svg")
    if not os.access(a.converter, os.X_OK):
        die("no %s: build it first" % a.converter)
    a.faithful_args = shlex.split(os.environ.get("FAITHFUL_ARGS", "--faithful"))
    a.contract_args = shlex.split(os.environ.get("CONTRACT_ARGS", "--contract"))
    if a.gate is not None:
        a.no_peers = a.no_contract = True
    a.modes = [m for m in MODES if not (m == "peer" and a.no_peers)
               and not (m == "contract" and a.no_contract)]
    helptext = subprocess.run([a.converter, "--help"], capture_output=True, text=True).stdout
    for mode, args in (("faithful", a.faithful_args), ("contract", a.contract_args)):
        for flag in args:
            if mode in a.modes and flag.startswith("--") and flag.split("=")[0] not in helptext:
                die("%s has no %s option; set %s_ARGS (empty for the default mode) to stand in"
                    % (a.converter, flag, mode.upper()))
    a.emf_peer = None if a.no_peers else shutil.which("emf2svg-conv")
    a.wmf_peer = None if a.no_peers else shutil.which("wmf2svg")

    if a.gate is not None and not a.inputs and not a.list:
        a.list = os.path.join(os.path.dirname(os.path.abspath(__file__)), "fidelity_gate.txt")
    inputs = a.inputs + (read_list(a.list) if a.list else [])
    if not inputs:
        inputs = [os.path.join(a.corpus, d) for d in ("emf", "mixed", "wmf")]
    paths = collect(inputs, a.corpus)
    if not paths:
        die("no metafiles")
    items = [Item(p, k) for p, k in zip(paths, unique_keys(paths))]
    os.makedirs(a.out, exist_ok=True)
    a.workdir = a.workdir or os.path.join(a.out, "work")
    os.makedirs(a.workdir, exist_ok=True)
    sc = load_score_module(a.score)
    check_fonts(a.workdir)

    # LibreOffice draws the references while the converters run.
    refs = threading.Thread(target=render_refs, args=(sc, [i.path for i in items], a))
    refs.start()
    t = time.time()
    convert_all(items, a)
    t_convert = time.time() - t
    refs.join()
    t_refs = time.time() - started
    t = time.time()
    with concurrent.futures.ThreadPoolExecutor(a.jobs) as pool:
        list(pool.map(lambda i: score_item(i, sc, a), items))
    t_score = time.time() - t

    rows = summarise(items, a.modes)
    elapsed = time.time() - started
    write_tsv(items, a.modes, os.path.join(a.out, "fidelity.tsv"))
    peers = ", ".join(p for p in (a.emf_peer, a.wmf_peer) if p) or "none"
    info = html.escape("%d files; %s; faithful: metafile2svg %s; contract: metafile2svg %s; "
                       "peers: %s; %s; %.0f s. Files ordered by their faithful score, lowest "
                       "first; files whose reference is blank or failed come last." % (
                           len(items), a.converter, " ".join(a.faithful_args) or "(default)",
                           " ".join(a.contract_args) or "(default)", peers,
                           time.strftime("%Y-%m-%d %H:%M"), elapsed))
    write_page(items, a.modes, rows, info, os.path.basename(os.path.abspath(a.out)),
               os.path.join(a.out, "index.html"))

    failed = sum(1 for i in items for m in a.modes if i.status.get(m))
    print("fidelity: %d files, %d conversions failed or unrenderable, %d references failed; "
          "conversions %.0f s, references ready after %.0f s, scoring %.0f s, total %.0f s" % (
              len(items), failed, sum(1 for i in items if i.ref == "failed"), t_convert, t_refs,
              t_score, elapsed), file=sys.stderr)
    print("fidelity: %s, %s" % (os.path.join(a.out, "fidelity.tsv"),
                                os.path.join(a.out, "index.html")), file=sys.stderr)
    print(markdown(rows, a.modes))
    if a.gate is not None:
        m = rows[-1]["faithful"]
        ok = m == m and m >= a.gate
        print("\ngate: faithful mean %s over %d drawn files, minimum %.3f: %s" % (
            fmt(m), rows[-1]["drawn"], a.gate, "pass" if ok else "FAIL"))
        return 0 if ok else 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
