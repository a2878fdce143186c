# SPDX-License-Identifier: BSD-3-Clause
"""The effects: their pictures, made by the host of the build, and a page for each from what the registry says of it."""
import html
import json
import os
import re
import shutil
import subprocess

from pages import code_block, plain
from sizes import size_of

KINDS = {'generator': 'Generators', 'filter': 'Filters', 'blendMode': 'Blend modes', 'transition': 'Transitions'}
WORDS = {'number': 'number', 'boolean': 'yes or no', 'index': 'whole number', 'string': 'text', 'color': 'color', 'image': 'picture',
         'gradient': 'gradient', 'levels': 'levels', 'opaque': 'opaque data'}


class Effect:
    def __init__(self, kind, said):
        self.kind, self.said, self.name = kind, said, said['name']
        self.url = 'effects/' + re.sub(r'[^a-z0-9]+', '-', self.name.lower()) + '.html'
        self.pictures = []  # (file, inputs, command)


def render(vorto, root, build, out):
    """The effects of the registry with their pictures, which lie in `out`/pictures."""
    environment = dict(os.environ, HOME=f'{build}/docs/home', VORTO_PLUGIN_PATH='', FREI0R_PATH='')  # what ships, alone
    environment.pop('XDG_DATA_HOME', None)
    listed = json.loads(subprocess.run([vorto, 'effects', '--json'], env=environment, capture_output=True, check=True).stdout)
    shown = {}
    for kind, members in listed.items():
        if kind in KINDS:
            for said in members:
                shown.setdefault(said['name'], Effect(kind, said))
    scratch = f'{build}/docs/gallery'
    shutil.rmtree(scratch, ignore_errors=True)
    done = subprocess.run([f'{root}/scripts/gallery', build, scratch], env=environment, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise SystemExit(done.stderr)
    os.makedirs(f'{out}/pictures/inputs')
    with open(f'{scratch}/gallery/pictures.tsv', encoding='utf-8') as file:
        for line in file:
            name, picture, inputs, command = line.rstrip('\n').split('\t')
            files = [published(vorto, environment, f'{scratch}/gallery', f'inputs/{one}', out) for one in inputs.split()]
            shown[name].pictures.append((published(vorto, environment, f'{scratch}/gallery', picture, out), files, command))
    return sorted(shown.values(), key=lambda effect: (list(KINDS).index(effect.kind), effect.name))


def published(vorto, environment, folder, name, out):
    """Copies a picture into the site, opaque ones as JPEG; returns its path there."""
    source = f'{folder}/{name}.png'
    with open(source, 'rb') as file:
        has_alpha = file.read(26)[25] in (4, 6)
    target = f'pictures/{name}.{"png" if has_alpha else "jpg"}'
    if has_alpha:
        shutil.copy(source, f'{out}/{target}')
    elif not os.path.exists(f'{out}/{target}'):
        subprocess.run([vorto, 'render', 'Levels', '--input', source, '--quality', '90', '--output', f'{out}/{target}'],
                       env=environment, check=True)
    return target


def kinds(shown):
    for kind, title in KINDS.items():
        yield title, [effect for effect in shown if effect.kind == kind]


def image(site, path, words, root):
    width, height = size_of(f'{site.out}/{path}')
    return f'<img src="{root}{path}" alt="{html.escape(words)}" width="{width}" height="{height}" loading="lazy">'


def write(site, shown, guide):
    notes = notes_of(guide)
    write_gallery(site, shown, guide)
    os.makedirs(f'{site.out}/effects')
    for effect in shown:
        body, contents = effect_page(site, effect, notes.get(effect.name, ''))
        site.write(effect.url, effect.name, body, contents, 'effect', effect.said.get('description', ''))
        ports = ', '.join(port['name'] for port in effect.said['inputs'])
        site.search.append({'t': effect.name, 'p': KINDS[effect.kind], 'u': effect.url, 'k': 'effect',
                            'x': f'{effect.said.get("description", "")} {ports}'})


def notes_of(guide):
    """What the tables of the page say of effects, as HTML by their names."""
    notes, row = {}, []
    for token in guide.tokens:
        if token.type == 'tr_open':
            row = []
        elif token.type == 'inline':
            row.append(token)
        elif token.type == 'tr_close' and len(row) == 2:
            notes[plain(row[0])] = guide.inline(row[1].children)
    return notes


def write_gallery(site, shown, guide):
    """The page of the effects, with pictures where its source has tables."""
    text = re.sub(r'<p><a class="picture".*?</p>', '', guide.html(), count=1, flags=re.DOTALL)
    start, *sections = re.split(r'(?=<h2 )', text)
    by_title = dict(kinds(shown))
    out = [start]
    for section in sections:
        title = html.unescape(re.sub(r'<a class="anchor".*?</a>|<[^>]*>', '', section.split('</h2>')[0]))
        section = re.sub(r'<div class="table">.*?</div>', '', section, flags=re.DOTALL)
        out.append(section)
        cards = []
        for effect in by_title.pop(title, []):
            words = html.escape(re.split(r'(?<=[.:;]) ', effect.said.get('description', ''))[0].rstrip('.:;'))
            cards.append(f'<li><a href="{effect.url}">{image(site, effect.pictures[0][0], "", "")}'
                         f'<strong>{html.escape(effect.name)}</strong><span>{words}</span></a></li>')
        if cards:
            out.append(f'<ul class="effects">{"".join(cards)}</ul>')
    left = [title for title, members in by_title.items() if members]
    if left:
        raise SystemExit(f'site: gallery.md has no part for {", ".join(left)}')
    contents = [(h.level, h.text, h.anchor) for h in guide.headings]
    site.write('gallery.html', guide.title, ''.join(out), contents, 'effect', guide.summary)


def effect_page(site, effect, notes):
    root = '../'
    out = [f'<h1>{html.escape(effect.name)}</h1>', f'<p>{html.escape(effect.said.get("description", ""))}</p>']
    contents = []
    for i, (picture, inputs, command) in enumerate(effect.pictures):
        if i:
            out.append('<h2 id="another-setting">Another setting</h2>')
            contents.append((2, 'Another setting', 'another-setting'))
        out.append(shown_picture(site, effect, picture, inputs, root))
        out.append(code_block('console', f'$ {command} --output out.png\n'))
    if notes:
        out.append(f'<h2 id="what-to-know">What to know</h2><p>{notes[0].upper() + notes[1:]}.</p>'.replace('..</p>', '.</p>'))
        contents.append((2, 'What to know', 'what-to-know'))
    out.append('<h2 id="ports">Ports</h2>' + ports_table(effect.said['inputs']))
    contents.append((2, 'Ports', 'ports'))
    traits = []
    if effect.said.get('dependsOnTime'):
        traits.append('The result depends on the time.')
    if effect.said.get('keepsState'):
        traits.append('It keeps a state from frame to frame: frames are rendered one after another.')
    if traits:
        out.append(f'<p>{" ".join(traits)}</p>')
    return ''.join(out), contents


def shown_picture(site, effect, picture, inputs, root):
    after = image(site, picture, f'A picture made with {effect.name}', root)
    if len(inputs) == 1 and effect.kind == 'filter':
        before = image(site, inputs[0], 'The picture before', root)
        return (f'<figure class="shown"><div class="compare">{before}{after}<b>before</b><b>after</b>'
                '<input type="range" min="0" max="100" value="35" aria-label="How much of the picture before"></div></figure>')
    names = {'blendMode': ('Background', 'Foreground'), 'transition': ('From', 'To')}.get(effect.kind, ())
    small = ''.join(f'<figure>{image(site, path, name, root)}<figcaption>{name}</figcaption></figure>'
                    for path, name in zip(inputs, names))
    return f'<figure class="shown single">{after}</figure>' + (f'<div class="inputs">{small}</div>' if small else '')


def ports_table(ports):
    rows = []
    for port in ports:
        rows.append(f'<tr><td>{html.escape(port["name"])}<br><code>{html.escape(port["key"])}</code></td>'
                    f'<td>{WORDS.get(port["kind"], port["kind"])}</td><td class="number">{range_of(port)}</td>'
                    f'<td class="number">{default_of(port)}</td></tr>')
    return ('<div class="table"><table><thead><tr><th>Port</th><th>Kind</th><th>Range</th><th>Default</th></tr></thead><tbody>'
            + ''.join(rows) + '</tbody></table></div>')


def number(value):
    return f'{value:g}' if abs(value) < 1e6 else str(value)


def range_of(port):
    if 'menu' in port:
        return ', '.join(html.escape(entry) for entry in port['menu'])
    if 'minimum' in port and 'maximum' in port:
        return f'{number(port["minimum"])} to {number(port["maximum"])}'
    return ''


def default_of(port):
    value = port.get('default')
    if value is None:
        return ''
    if port['kind'] == 'color':
        digits = ''.join(f'{min(255, max(0, round(component * 255))):02x}' for component in value)
        code = f'#{digits[:6] if digits[6:] == "ff" else digits}'
        return f'<span class="swatch" style="background: {code}"></span><code>{code}</code>'
    if port['kind'] == 'boolean':
        return 'yes' if value else 'no'
    if 'menu' in port:
        return html.escape(port['menu'][int(value)])
    return html.escape(value) if isinstance(value, str) else number(value)
