# SPDX-License-Identifier: BSD-3-Clause
"""The pages of Docs: their order, their text as HTML, and what the search finds in them."""
import base64
import html
import io
import json
import os
import re

from markdown_it import MarkdownIt
from pygments import highlight
from pygments.formatters import HtmlFormatter
from pygments.lexers import get_lexer_by_name

from sizes import size_in, size_of

LEXERS = {'cpp': 'cpp', 'cmake': 'cmake', 'python': 'python', 'xml': 'xml', 'json': 'json', 'sh': 'sh', 'css': 'css', 'html': 'html',
          'svg': 'xml', 'make': 'make'}


class Part:
    def __init__(self, title, purpose):
        self.title, self.purpose, self.pages = title, purpose, []


def read_contents(docs):
    """The parts of Docs/Site/contents with those of their pages that exist, and the pages that it does not name."""
    parts, named = [], set()
    for line in open(os.path.join(docs, 'Site', 'contents'), encoding='utf-8'):
        if line.startswith('#') or not line.strip():
            continue
        if not line.startswith(' '):
            title, purpose = line.strip().split(': ', 1)
            parts.append(Part(title, purpose))
            continue
        name = line.strip()
        named.add(name)
        if source_of(docs, name):
            parts[-1].pages.append(name)
    there = {file[:-3] for file in os.listdir(docs) if file.endswith('.md')}
    return parts, sorted(there - named)


def source_of(docs, name):
    """The file of a page, of Markdown or, in Notebooks, a notebook; None when there is none."""
    for path in (f'{docs}/{name}.md', f'{docs}/Notebooks/{name}.ipynb'):
        if os.path.exists(path):
            return path
    return None


def title_of(docs, name):
    """What a page is called where another one names its file; the name, when there is no such page."""
    path = source_of(docs, name)
    if not path:
        return name
    with open(path, encoding='utf-8') as file:
        return re.sub(r'[`#]', '', file.readline()).strip()


def slug(text):
    return re.sub(r'\s', '-', re.sub(r'[^\w\s-]', '', text.lower().strip()))


class Heading:
    def __init__(self, level, text, anchor):
        self.level, self.text, self.anchor = level, text, anchor
        self.words = ''


class Page:
    """One page of Markdown. `references` turns names of code into links; `files` collects what is to be copied."""

    def __init__(self, docs, name, references=None):
        self.name = name
        self.docs = docs
        self.references = references
        self.files = set()
        self.headings = []
        self.made = {}  # pictures that lie in no file: their bytes by their links
        path = source_of(docs, name)
        self.folder = os.path.dirname(path)
        with open(path, encoding='utf-8') as file:
            text = file.read()
        if path.endswith('.ipynb'):
            text = self._notebook(json.loads(text))
        self.tokens = MarkdownIt('commonmark').enable('table').parse(text)
        self._read_headings()
        self.title = self.headings[0].text if self.headings else name
        self.summary = self._first_paragraph()

    def _notebook(self, notebook):
        """The cells of a notebook, with what they printed, as Markdown."""
        out = []
        for cell in notebook['cells']:
            source = ''.join(cell['source'])
            out.append(source if cell['cell_type'] == 'markdown' else fenced('python', source))
            for output in cell.get('outputs', []):
                data = output.get('data', {})
                if 'image/png' in data:
                    link = f'pictures/{self.name}-{len(self.made) + 1}.png'
                    self.made[link] = base64.b64decode(''.join(data['image/png']))
                    out.append(f'![What the cell shows]({link})')
                else:
                    text = ''.join(output.get('text') or data.get('text/plain') or output.get('traceback', []))
                    out.append(fenced('output', text) if text.strip() else '')
        return '\n\n'.join(out)

    def _read_headings(self):
        used = {}
        for i, token in enumerate(self.tokens):
            if token.type == 'heading_open':
                text = plain(self.tokens[i + 1])
                anchor = slug(text)
                used[anchor] = used.get(anchor, -1) + 1
                if used[anchor]:
                    anchor += f'-{used[anchor]}'
                token.attrSet('id', anchor)
                self.headings.append(Heading(int(token.tag[1]), text, anchor))
            elif self.headings and token.type in ('inline', 'fence', 'code_block'):
                before = self.tokens[i - 1].type if i else ''
                if before != 'heading_open':
                    self.headings[-1].words += ' ' + (plain(token) if token.type == 'inline' else token.content)

    def _first_paragraph(self):
        for i, token in enumerate(self.tokens):
            if token.type == 'paragraph_open':
                text = plain(self.tokens[i + 1])
                if text:
                    return re.split(r'(?<=[.:]) ', text)[0].rstrip(':')
        return ''

    def html(self):
        out = []
        first = True
        for i, token in enumerate(self.tokens):
            kind = token.type
            if kind == 'heading_open':
                out.append(f'<{token.tag} id="{token.attrGet("id")}">')
            elif kind == 'heading_close':
                anchor = self.tokens[i - 2].attrGet('id')
                sign = '' if first else f'<a class="anchor" href="#{anchor}" aria-label="Link to this part">#</a>'
                out.append(f'{sign}</{token.tag}>\n')
                first = False
            elif kind == 'inline':
                out.append(self.inline(token.children))
            elif kind == 'fence':
                out.append(code_block(token.info.strip(), token.content))
            elif kind == 'code_block':
                out.append(code_block('', token.content))
            elif kind == 'table_open':
                out.append('<div class="table"><table>')
            elif kind == 'table_close':
                out.append('</table></div>\n')
            elif kind in ('th_open', 'td_open'):
                out.append(f'<{token.tag}>')
            elif kind == 'html_block':
                raise SystemExit(f'site: {self.name}.md: HTML in a page: {token.content[:60]}')
            elif token.hidden:
                continue
            elif token.nesting == 1:
                start = token.attrGet('start')
                out.append(f'<{token.tag}' + (f' start="{start}"' if start else '') + '>')
            elif token.nesting == -1:
                out.append(f'</{token.tag}>\n')
            elif kind == 'hr':
                out.append('<hr>\n')
            else:
                raise SystemExit(f'site: {self.name}.md: what is a {kind}?')
        text = ''.join(out)
        return re.sub(r'<thead>\s*<tr>(<th></th>\s*)+</tr>\s*</thead>', '', text)

    def inline(self, children):
        out = []
        linked = False
        file = ''  # to which the link leads that is open
        for token in children:
            kind = token.type
            if kind == 'text':
                text = title_of(self.docs, file[:-3]) if file and token.content == file else token.content
                out.append(html.escape(text, quote=False))
            elif kind == 'softbreak':
                out.append('\n')
            elif kind == 'hardbreak':
                out.append('<br>')
            elif kind == 'code_inline':
                short = ' class="short"' if len(token.content) <= 20 else ''
                code = f'<code{short}>{unbroken(token.content)}</code>'
                target = None if linked or not self.references else self.references(token.content)
                out.append(f'<a class="ref" href="{target}">{code}</a>' if target else code)
            elif kind == 'link_open':
                target = self.target(token.attrGet('href'))
                linked = target is not None
                file = token.attrGet('href') if re.fullmatch(r'[\w-]+\.md', token.attrGet('href')) else ''
                out.append(f'<a href="{html.escape(target)}">' if linked else '')
            elif kind == 'link_close':
                out.append('</a>' if linked else '')
                linked, file = False, ''
            elif kind == 'image':
                source = self.target(token.attrGet('src'))
                words = html.escape(plain_children(token.children))
                out.append(f'<a class="picture" href="{source}"><img src="{source}" alt="{words}"{self.size(token)} loading="lazy"></a>')
            elif kind in ('strong_open', 'em_open', 'strong_close', 'em_close'):
                out.append(f'<{"/" if token.nesting < 0 else ""}{token.tag}>')
            else:
                raise SystemExit(f'site: {self.name}.md: what is a {kind}?')
        return ''.join(out)

    def size(self, token):
        link = token.attrGet('src')
        width, height = size_in(io.BytesIO(self.made[link])) if link in self.made else size_of(os.path.join(self.folder, link))
        return f' width="{width}" height="{height}"'

    def target(self, link):
        """Where a link of the page leads in the site; None when that is in the repository alone."""
        if re.match(r'[a-z]+:', link) or link.startswith('#'):
            return link
        path, _, anchor = link.partition('#')
        if link in self.made:
            return link
        if path.endswith('.md') and '/' not in path:
            return page_of(path[:-3]) + ('#' + anchor if anchor else '')
        if not os.path.exists(os.path.join(self.folder, path)):
            raise SystemExit(f'site: {self.name}: there is no {link}')
        path = os.path.relpath(os.path.join(self.folder, path), self.docs)
        if os.path.dirname(path) == 'Notebooks' and path.endswith('.ipynb'):
            return page_of(os.path.basename(path)[:-6])
        if path.startswith('..'):
            return 'index.html' if path == '../README.md' else None
        if path.endswith('.md') and '/' not in path:
            return page_of(path[:-3]) + ('#' + anchor if anchor else '')
        self.files.add(path)
        return 'files/' + path

    def search_entries(self):
        for heading in self.headings:
            where = self.title if heading is not self.headings[0] else ''
            yield {'t': heading.text, 'p': where, 'u': page_of(self.name) + (f'#{heading.anchor}' if where else ''),
                   'x': re.sub(r'\s+', ' ', heading.words).strip()[:600], 'k': 'guide'}


def page_of(name):
    return 'index.html' if name == 'start' else f'{name}.html'


def plain(token):
    return plain_children(token.children or [])


def plain_children(children):
    return ''.join(' ' if child.type == 'softbreak' else child.content for child in children
                   if child.type in ('text', 'code_inline', 'softbreak'))


def unbroken(code):
    """Code in which no line ends within the name of an option."""
    return re.sub(r'(?<![\w-])--?[a-z][\w-]*', r'<span class="option">\g<0></span>', html.escape(code, quote=False))


def fenced(language, text):
    return f'`````{language}\n{text.rstrip(chr(10))}\n`````'


def code_block(info, content):
    language, _, file = info.partition(' ')
    title = f'<figcaption>{html.escape(file)}</figcaption>' if file else ''
    if language == 'console':
        body = console(content)
    elif language in LEXERS:
        lexer = get_lexer_by_name(LEXERS[language], stripnl=False)
        body = highlight(content, lexer, HtmlFormatter(nowrap=True))
    else:
        body = html.escape(content, quote=False)
    return f'<figure class="code {language or "plain"}">{title}<pre><code>{body}</code></pre></figure>\n'


def console(content):
    """Commands and what they print; the prompt is no part of what one selects or copies."""
    lines = []
    for line in content.rstrip('\n').split('\n'):
        text = html.escape(line, quote=False)
        if line.startswith('$ '):
            lines.append(f'<span class="command"><span class="prompt">$&nbsp;</span>{unbroken(line[2:])}</span>')
        elif line == '...':
            lines.append('<span class="more">...</span>')
        else:
            lines.append(f'<span class="printed">{text}</span>')
    return ''.join(lines)
