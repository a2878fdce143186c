# SPDX-License-Identifier: BSD-3-Clause
"""The pages that lead to others: the first one, the commands, the index of the headers."""
import html
import os
import re
import subprocess

from effects import image


def version(root):
    with open(f'{root}/CMakeLists.txt', encoding='utf-8') as file:
        return re.search(r'project\(\w+ VERSION ([\d.]+)', file.read()).group(1)


STRIP = ('Gradient Map', 'Duotone', 'Gradient Wipe', 'Overlay', 'Transform')


def write_start(site, parts, guides, shown):
    """The first page: what it is, the first picture, and where each reader goes on."""
    page = guides['start']
    heading = page.headings[0]
    body = page.html()
    body = body[body.index('</h1>') + 5:]
    hero = ('<header class="hero"><h1>Image effects for pictures, clips and programs</h1>'
            '<p class="lead">Vorto renders gradients, levels, blends and transitions exactly the same everywhere: in its inspector, '
            'on the command line, on a farm, and in your own program.</p>'
            '<div class="doors"><a href="#first">First picture in a minute</a><a href="gallery.html">See the effects</a></div>'
            f'<div class="strip">{strip(site, shown)}</div></header>')
    cards = []
    for part in parts:
        links = [f'<li><a href="{name}.html">{html.escape(guides[name].title)}</a></li>' for name in part.pages if name != 'start']
        if part.title == 'Reference':
            links += ['<li><a href="commands.html">Commands</a></li>', '<li><a href="api/index.html">Public headers</a></li>']
        if part.title != 'Start' and links:
            cards.append(f'<li><h3>{html.escape(part.title)}</h3><p>{html.escape(part.purpose)}</p><ul>{"".join(links)}</ul></li>')
    body = (f'{hero}<h2 id="first">{html.escape(heading.text)}</h2>{body}'
            f'<h2 id="readers">Where to go on</h2><ul class="cards">{"".join(cards)}</ul>')
    contents = [(2, heading.text, 'first')] + [(h.level, h.text, h.anchor) for h in page.headings[1:]] + [(2, 'Where to go on', 'readers')]
    site.write('index.html', 'Vorto', body, contents, 'start', page.summary)
    for entry in site.search:
        entry['u'] = re.sub(r'^start\.html', 'index.html', entry['u'])


def strip(site, shown):
    found = {effect.name: effect for effect in shown}
    return ''.join(f'<a href="{found[name].url}">{image(site, found[name].pictures[0][0], "", "")}{name}</a>' for name in STRIP)


def write_commands(site, vorto):
    """What the commands say of themselves."""
    def said(*words):
        return subprocess.run([vorto, *words, '--help'], capture_output=True, text=True, check=True).stdout

    whole = said()
    names = re.findall(r'^  (\w+) {2,}(\S.*)$', whole.split('Subcommands:')[1].split('\n\n')[0], re.MULTILINE)
    out = ['<h1>Commands</h1><p>What <code>vorto --help</code> and <code>vorto COMMAND --help</code> print.</p>', help_block('vorto', whole)]
    contents = []
    for name, purpose in names:
        anchor = f'vorto-{name}'
        out.append(f'<h2 id="{anchor}">vorto {name}</h2>' + help_block(name, said(name)))
        contents.append((2, f'vorto {name}', anchor))
        site.search.append({'t': f'vorto {name}', 'p': 'Commands', 'u': f'commands.html#{anchor}', 'x': purpose, 'k': 'guide'})
    site.write('commands.html', 'Commands', ''.join(out), contents, 'guide', 'The commands of vorto and their options.')


def help_block(_, text):
    """A help text: options as a list of terms, the rest as it stands."""
    out, terms, plain = [], [], []

    def flush():
        if terms:
            out.append('<dl class="options">' + ''.join(
                f'<dt><code>{html.escape(term, quote=False)}</code></dt><dd>{html.escape(" ".join(words), quote=False)}</dd>'
                for term, words in terms) + '</dl>')
            terms.clear()
        words = '\n'.join(plain).strip('\n')
        if words:
            out.append(f'<figure class="code plain wraps"><pre><code>{html.escape(words, quote=False)}</code></pre></figure>')
        plain.clear()

    for line in text.split('\n'):
        option = re.match(r'^  (-[^ ].*?|[a-z]\w* [A-Z]+.*?)(?: {2,}(\S.*))?$', line)
        more = re.match(r'^ {20,}(\S.*)$', line)
        if option and (option.group(2) or option.group(1).startswith('-')):
            if plain:
                flush()
            terms.append((option.group(1), [option.group(2) or '']))
        elif more and terms and not plain:
            terms[-1][1].append(more.group(1))
        else:
            if terms:
                flush()
            plain.append(line)
    flush()
    return ''.join(out)


def write_reference_index(site, rooms, reference):
    out = ['<h1>Public headers</h1><p>Every class and function that programs and effects may use, header by header, in the words of the '
           'headers themselves. <a href="names.html">All names in alphabetical order</a>.</p>']
    contents = []
    for room, headers in rooms.items():
        out.append(f'<h2 id="{room}">{room}</h2><div class="table"><table><tbody>')
        contents.append((2, room, room))
        for header in headers:
            out.append(f'<tr><td><a href="{os.path.relpath(header.url, "api")}"><code>{header.path}</code></a></td>'
                       f'<td>{html.escape(header.summary, quote=False)}</td></tr>')
        out.append('</tbody></table></div>')
    site.write('api/index.html', 'Public headers', ''.join(out), contents, 'api', 'The public headers of the framework.')
    letters = {}
    for name, owner, _, url, _ in reference.entries:
        letters.setdefault(name[0].upper(), []).append((name.lower(), name, owner, os.path.relpath(url, 'api')))
    out = ['<h1>All names</h1>']
    contents = []
    for letter in sorted(letters):
        out.append(f'<h2 id="letter-{letter}">{letter}</h2><ul class="letters">')
        contents.append((2, letter, f'letter-{letter}'))
        out += [f'<li><a href="{url}"><code>{html.escape(name)}</code></a> <small>{html.escape(os.path.basename(owner))}</small></li>'
                for _, name, owner, url in sorted(letters[letter])]
        out.append('</ul>')
    site.write('api/names.html', 'All names', ''.join(out), contents, 'api', 'Every public name.', current='api/index.html')
