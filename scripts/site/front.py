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
    hero = ('<header class="hero"><h1>Image effects, the same everywhere</h1>'
            '<p class="lead">Gradients, levels, blurs, blends and transitions for pictures and clips: with the mouse, on the command '
            'line, on a farm, or in a program of your own. Every bit comes out alike.</p>'
            '<div class="doors"><a href="#first">First picture in a minute</a><a href="gallery.html">See the effects</a></div>'
            f'<div class="strip">{strip(site, shown)}</div></header>')
    cards = []
    for part in parts:
        links = [f'<li><a href="{name}.html">{html.escape(guides[name].title)}</a></li>' for name in part.pages if name != 'start']
        if part.title == 'Reference':
            links += [f'<li><a href="{link.url}">{html.escape(link.title)}</a></li>' for link in site.references]
        if part.title != 'Start' and links:
            cards.append(f'<li><h3>{html.escape(part.title)}</h3><p>{html.escape(part.purpose)}</p><ul>{"".join(links)}</ul></li>')
    body = (f'{hero}<h2 id="first">{html.escape(heading.text)}</h2>{body}'
            f'<h2 id="readers">Where to go on</h2><ul class="cards">{"".join(cards)}</ul>')
    contents = [(2, heading.text, 'first')] + [(h.level, h.text, h.anchor) for h in page.headings[1:]] + [(2, 'Where to go on', 'readers')]
    site.write('index.html', 'Vorto', body, contents, 'start', page.summary)


def strip(site, shown):
    found = {effect.name: effect for effect in shown}
    return ''.join(f'<a href="{found[name].url}">{image(site, found[name].pictures[0][0], "", "")}{name}</a>' for name in STRIP)


class Manual:
    """One of the manual pages that the build made."""

    def __init__(self, path, beside):
        self.path = path
        stem = os.path.basename(path)[:-2]
        self.name = stem.replace('-', ' ')
        self.url = f'commands/{stem}.html'
        text = subprocess.run(['mandoc', '-T', 'html', '-O', 'fragment', path], capture_output=True, text=True, check=True).stdout
        text = re.sub(r'<table class="(head|foot)">.*?</table>', '', text, flags=re.DOTALL)
        text = re.sub(r'<(/?)h2\b', r'<\1h3', text)
        text = re.sub(r'<(/?)h1\b', r'<\1h2', text)
        text = re.sub(r'(<h2[^>]*><a[^>]*>)([^<]*)', lambda found: found[1] + found[2].capitalize(), text)
        others = {os.path.basename(other)[:-2] for other in beside}
        text = re.sub(r'(<b>([\w-]+)</b>)(?=\(1\))',
                      lambda found: f'<a href="{found[2]}.html">{found[1]}</a>' if found[2] in others else found[1], text)
        self.text = re.sub(r'<br/>', '<br>', text)
        self.contents = [(int(level), plain_text(words), anchor) for level, anchor, words in
                         re.findall(r'<h(\d)[^>]* id="([^"]*)">(.*?)</h\1>', self.text, re.DOTALL)]
        name = re.search(r'id="NAME".*?<p[^>]*>(.*?)</p>', self.text, re.DOTALL)
        self.summary = re.sub(r'^.*? - ', '', plain_text(name.group(1))) if name else ''


def plain_text(markup):
    return re.sub(r'\s+', ' ', html.unescape(re.sub(r'<[^>]*>', '', markup))).strip().replace('\u2013', '-').replace('\u2014', '-')


def manuals(folder):
    files = [file for file in os.listdir(folder) if file.endswith('.1')] if os.path.isdir(folder) else []
    return [Manual(f'{folder}/{file}', files) for file in sorted(files, key=lambda file: file[:-2])]


def write_manuals(site, pages):
    os.makedirs(f'{site.out}/commands', exist_ok=True)
    for page in pages:
        body = f'<h1>{html.escape(page.name)}</h1><div class="manual">{page.text}</div>'
        site.write(page.url, page.name, body, page.contents, 'command', page.summary)
        site.search.append({'t': page.name, 'p': 'Commands', 'u': page.url, 'k': 'guide', 'x': page.summary})
        for anchor, option, words in re.findall(r'<dt[^>]*id="([^"]*)"[^>]*>(.*?)</dt>\s*<dd[^>]*>(.*?)</dd>', page.text, re.DOTALL):
            site.search.append({'t': plain_text(option), 'p': page.name, 'u': f'{page.url}#{anchor}', 'k': 'value',
                                'x': plain_text(words)[:200]})


def write_reference_index(site, rooms, reference):
    out = ['<h1>Public headers</h1><p>Every class and function that programs and effects may use, header by header, in the words of the '
           'headers themselves. <a href="names.html">All names in alphabetical order</a>.</p>']
    contents = []
    for room, headers in rooms.items():
        out.append(f'<h2 id="{room}">{room}</h2><div class="table headers"><table><tbody>')
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
