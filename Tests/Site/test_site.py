#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
"""What the documentation's site is made with, as far as it needs no browser and no other package."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

HEADER = '''// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// What the file is about: 1 < 2 & `a < b`.

class Other;

// A class.
class TARN_EXPORT Thing : public Other,
                          public Another {
 public:
  Thing() = default;
  int size = 0;  // in bytes
                 // of memory

  // Both are
  // said here.
  void first(int a,
             int b);
  void second();  // and this
  int count() const { return 0; }

  // What follows is slow.

  // Slow.
  void third();

  void bare();

 private:
  void hidden();
};
'''

FILTERED = '''/*! @file */
#pragma once
/// @file
/// What the file is about: 1 \\< 2 \\& <tt>a \\< b</tt>.

class Other;

/// A class.
class TARN_EXPORT Thing : public Other,
                          public Another {
 public:
PLAIN  Thing() = default;
  int size = 0;  ///< NOTE in bytes
                 ///< of memory

/// Both are
/// said here.
  void first(int a,
             int b);
SAME  void second();  ///< NOTE and this
SAME  int count() const { return 0; }

/// What follows is slow. REMARK
///
/// Slow.
  void third();

  void bare();

 private:
  void hidden();
};
'''


def filtered(path):
    return subprocess.run([ROOT / 'scripts/site/header-filter', path], capture_output=True, text=True, check=True).stdout


class HeaderFilter(unittest.TestCase):
    def test_comments_become_documentation(self):
        wanted = FILTERED
        for word, mark in (('SAME', '/*! @xmlonly<vorto-same/>@endxmlonly */ '), ('PLAIN', '/*! @xmlonly<vorto-plain/>@endxmlonly */ '),
                           ('NOTE', '@xmlonly<vorto-note/>@endxmlonly'), ('REMARK', '@xmlonly<vorto-remark/>@endxmlonly')):
            wanted = wanted.replace(word, mark)
        with tempfile.NamedTemporaryFile('w', suffix='.h') as header:
            header.write(HEADER)
            header.flush()
            self.assertEqual(filtered(header.name).rstrip('\n'), wanted.rstrip('\n'))

    def test_lines_keep_their_numbers(self):
        for room in ('TarnCore', 'Ports'):
            for path in (ROOT / 'Source' / room).glob('*.h'):
                with self.subTest(path.name):
                    self.assertEqual(len(filtered(path).split('\n')) - 1, len(path.read_text().split('\n')))


class CheckPages(unittest.TestCase):
    def setUp(self):
        self.tree = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.tree)
        for folder in ('scripts', 'Docs/Site', 'Source'):
            os.makedirs(self.tree / folder)
        shutil.copy(ROOT / 'scripts/check-pages', self.tree / 'scripts')
        self.write('scripts/follow', 'for page in good $more; do\n  follow-page $page.md\ndone\nmore="other"\n')
        self.write('README.md', '[good](Docs/good.md#a-part)\n')
        self.write('Docs/Site/contents', 'Part: text\n  good\n  later\n')
        self.write('Docs/good.md', '# Good\n\n## A `part`\n\n```console\n$ true\n```\n\n    [code](nowhere.md)\n')

    def write(self, path, text):
        (self.tree / path).write_text(text)

    def complaints(self):
        done = subprocess.run([self.tree / 'scripts/check-pages'], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode != 0, bool(done.stderr))
        return done.stderr

    def test_what_is_right_passes(self):
        self.assertEqual(self.complaints(), '')

    def test_faults_are_named(self):
        good = (self.tree / 'Docs/good.md').read_text()
        for path, text, complaint in (
                ('Docs/good.md', good + '[x](gone.md)', 'there is no gone.md'),
                ('Docs/good.md', good + '[x](#b-part)', 'has no part b-part'),
                ('Docs/good.md', good + '```cpp\nint x;\n```\n', 'names no file'),
                ('Docs/stray.md', '# Stray\n', 'contents does not name stray'),
                ('Docs/later.md', '# Later\n```python x.py\n```\n', 'nothing runs this'),
                ('Source/A.h', '// @code\n', 'an example that nothing runs')):
            with self.subTest(complaint):
                self.setUp()
                self.write(path, text)
                self.assertIn(complaint, self.complaints())


if __name__ == '__main__':
    unittest.main()
