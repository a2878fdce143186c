# SPDX-License-Identifier: BSD-3-Clause
"""The frame around every page: header, navigation, what is on the page, the way to the next one."""
import html


class Link:
    def __init__(self, url, title):
        self.url, self.title = url, title


class Section:
    """A part of the navigation. One `of` a kind of pages is folded, and stands only on pages of that kind."""

    def __init__(self, title, links, of=None):
        self.title, self.links, self.of = title, links, of


class Site:
    def __init__(self, out, version):
        self.out, self.version = out, version
        self.sections = []
        self.top = []  # links of the header
        self.references = []  # what is looked up: commands, headers
        self.search = []

    def order(self):
        return [link for section in self.sections if not section.of for link in section.links]

    def write(self, url, title, body, contents=(), kind='guide', description='', current=None):
        """Writes a page to `url`. `contents` are (level, text, anchor) of its headings, `current` the link to mark."""
        root = '../' * url.count('/')
        current = current or url
        values = {
            'title': html.escape(title if url == 'index.html' else f'{title} - Vorto'),
            'description': html.escape(description, quote=True),
            'root': root, 'kind': kind, 'body': body,
            'top': ''.join(f'<a href="{root}{link.url}"{mark(link.url, current)}>{html.escape(link.title)}</a>' for link in self.top),
            'navigation': self.navigation(root, current, kind),
            'contents': on_this_page(contents), 'next': self.way_on(root, current), 'version': self.version,
        }
        text = PAGE
        for key, value in values.items():
            text = text.replace('{{' + key + '}}', value)
        path = f'{self.out}/{url}'
        with open(path, 'w', encoding='utf-8') as file:
            file.write(text)

    def navigation(self, root, current, kind):
        out = []
        for section in self.sections:
            if section.of and section.of != kind:
                continue
            inside = any(link.url == current for link in section.links)
            links = ''.join(f'<li><a href="{root}{link.url}"{mark(link.url, current)}>{html.escape(link.title)}</a></li>'
                            for link in section.links)
            if section.of:
                out.append(f'<details{" open" if inside else ""}><summary>{html.escape(section.title)}</summary><ul>{links}</ul></details>')
            else:
                out.append(f'<h2>{html.escape(section.title)}</h2><ul>{links}</ul>')
        return ''.join(out)

    def way_on(self, root, current):
        order = self.order()
        places = [i for i, link in enumerate(order) if link.url == current]
        if not places:
            return ''
        out = []
        for step, word, name in ((-1, 'Before', 'before'), (1, 'Next', 'after')):
            place = places[0] + step
            if 0 <= place < len(order):
                link = order[place]
                out.append(f'<a class="{name}" href="{root}{link.url}"><small>{word}</small>{html.escape(link.title)}</a>')
        return '<nav class="way" aria-label="Pages before and after">' + ''.join(out) + '</nav>'


def mark(url, current):
    return ' aria-current="page"' if url == current else ''


def on_this_page(contents):
    entries = [(level, text, anchor) for level, text, anchor in contents if level in (2, 3)]
    if len(entries) < 2:
        return ''
    links = ''.join(f'<li class="level{level}"><a href="#{anchor}">{html.escape(text)}</a></li>' for level, text, anchor in entries)
    return f'<nav class="contents" aria-label="On this page"><h2>On this page</h2><ul>{links}</ul></nav>'


PAGE = '''<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="description" content="{{description}}">
<title>{{title}}</title>
<link rel="icon" href="{{root}}vorto.svg" type="image/svg+xml">
<link rel="stylesheet" href="{{root}}style.css">
<script src="{{root}}theme.js"></script>
</head>
<body class="page-{{kind}}" data-root="{{root}}">
<a class="skip" href="#main">To the text</a>
<header class="top">
<button class="menu" aria-label="Pages" aria-expanded="false" aria-controls="pages"><svg viewBox="0 0 20 20" aria-hidden="true"><path d="M3 5h14M3 10h14M3 15h14"/></svg></button>
<a class="brand" href="{{root}}index.html"><img src="{{root}}vorto.svg" alt="" width="28" height="28">Vorto<small>{{version}}</small></a>
<nav class="main" aria-label="Main">{{top}}</nav>
<button class="search" aria-label="Search"><svg viewBox="0 0 20 20" aria-hidden="true"><circle cx="8.5" cy="8.5" r="5"/><path d="m12.5 12.5 4.5 4.5"/></svg><span>Search</span><kbd>/</kbd></button>
<button class="theme" aria-label="Light or dark"><svg viewBox="0 0 20 20" aria-hidden="true"><circle cx="10" cy="10" r="6.5"/><path class="half" d="M10 3.5a6.5 6.5 0 0 1 0 13z"/></svg></button>
</header>
<div class="frame">
<nav class="pages" id="pages" aria-label="Pages">{{navigation}}</nav>
<main id="main">
<article>
{{body}}
</article>
{{next}}
</main>
<aside>{{contents}}</aside>
</div>
<dialog class="finder" aria-label="Search">
<form method="dialog"><input type="search" placeholder="Search guides, effects and functions" aria-label="Search for" autocomplete="off" spellcheck="false"></form>
<ol class="hits"></ol>
<p class="hint"><kbd>&uarr;</kbd> <kbd>&darr;</kbd> choose <kbd>Enter</kbd> opens <kbd>Esc</kbd> closes</p>
</dialog>
<script src="{{root}}site.js"></script>
</body>
</html>
'''
