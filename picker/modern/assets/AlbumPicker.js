// Finds artists, albums and tracks as one types. The pages work without it.
'use strict';
(() => {
    const settings = document.currentScript.dataset;
    const perPage = Number(settings.perPage);
    const form = document.querySelector('.picker-search');
    const field = form.querySelector('input');
    const found = document.querySelector('.picker-found');
    const status = found.querySelector('[role=status]');
    const content = document.querySelector('.picker-content');
    const title = document.createElement('h1');
    const step = 60;

    const albums = [];    // {artist, title, number, picture, tone, words}
    let tracks = null;    // {title, album, words}
    let missing = '';     // what could not be loaded
    let shown = {};       // how many of each kind are shown

    // Letter case and accents do not count.
    const folded = text => text.normalize('NFD').replace(/[\u0300-\u036f]/g, '').toLowerCase();

    const element = (name, text, className) => {
        const made = document.createElement(name);
        if (text !== undefined) made.textContent = text;
        if (className) made.className = className;
        return made;
    };
    // Names may run from right to left, whatever stands around them.
    const holding = (outer, text) => {
        outer.append(element('bdi', text));
        return outer;
    };
    const albumLink = number => {
        const link = element('a');
        const page = Math.floor(number / perPage) + 1;
        link.href = settings.pages + 'AlbumPicker' + page + '.asp#album' + (number + 1);
        return link;
    };

    // Data comes as scripts that call these, so that no server needs to know a further kind of file.
    window.quillonPicker = {
        albums(artists) {
            for (const [artist, list] of artists) {
                for (const [title, picture, tone] of list) {
                    albums.push({artist, title, number: albums.length, picture, tone,
                                 words: folded(artist + ' ' + title)});
                }
            }
        },
        tracks(titles) {
            tracks = [];
            titles.forEach((list, number) => {
                for (const title of list) {
                    tracks.push({title, album: albums[number], words: folded(title)});
                }
            });
        },
    };
    const load = address => new Promise((resolve, reject) => {
        const script = element('script');
        script.src = address;
        script.onload = resolve;
        script.onerror = () => reject(address);
        document.head.append(script);
    });
    let loading = null;
    const loadAll = () => {
        loading ??= load(settings.albums).then(show).then(() => load(settings.tracks))
            .catch(() => { missing = ' Not everything could be loaded.'; }).then(show);
    };

    const picture = album => {
        if (album.tone === undefined) {
            const image = element('img', undefined, 'picker-cover');
            image.src = settings.thumbnails + album.picture;
            image.alt = '';
            image.width = image.height = 320;
            image.loading = 'lazy';
            return image;
        }
        const initials = element('span', undefined, 'picker-cover tone' + album.tone);
        initials.setAttribute('aria-hidden', 'true');
        initials.append(element('span', album.picture));
        return initials;
    };
    const card = album => {
        const link = albumLink(album.number);
        link.append(picture(album), holding(element('b'), album.title),
                    holding(element('span'), album.artist));
        const item = element('li');
        item.append(link);
        return item;
    };
    const song = track => {
        const link = albumLink(track.album.number);
        link.append(holding(element('b'), track.title), ' ',
                    holding(element('span'), track.album.title + ', ' + track.album.artist));
        const item = element('li');
        item.append(link);
        return item;
    };

    const list = (kind, caption, all, make, className) => {
        if (all.length === 0) return [];
        const box = element('ul', undefined, className);
        const count = Math.min(all.length, shown[kind] ??= step);
        box.append(...all.slice(0, count).map(make));
        const parts = [element('h2', caption), box];
        if (count < all.length) {
            const more = element('button', `Show more of ${all.length} ${caption.toLowerCase()}`,
                                 'picker-button');
            more.type = 'button';
            more.onclick = () => {
                shown[kind] += step;
                show();
                found.querySelectorAll('.' + className + ' a')[count].focus();
            };
            parts.push(more);
        }
        return parts;
    };
    const counted = (number, word) => `${number} ${word}${number === 1 ? '' : 's'}`;

    function show() {
        const words = folded(field.value).split(/\s+/).filter(Boolean);
        const searching = words.length > 0;
        content.hidden = searching;
        found.hidden = !searching;
        if (!searching) return;
        const albumsFound = albums.filter(album => words.every(word => album.words.includes(word)));
        const tracksFound = (tracks ?? []).filter(track =>
            words.some(word => track.words.includes(word)) &&
            words.every(word => track.words.includes(word) || track.album.words.includes(word)));
        title.textContent = 'Search results';
        const parts = [title, status,
                       ...list('albums', 'Albums', albumsFound, card, 'picker-grid'),
                       ...list('tracks', 'Tracks', tracksFound, song, 'picker-songs')];
        status.textContent = tracks || missing
            ? `${counted(albumsFound.length, 'album')}, ${counted(tracksFound.length, 'track')}.${missing}`
            : `${counted(albumsFound.length, 'album')}. Looking for tracks \u2026`;
        found.replaceChildren(...parts);
    }

    // The way back from an album leads to what was found.
    const mark = '#q=';
    const keep = () => {
        const text = field.value.trim();
        history.replaceState(null, '', text ? mark + encodeURIComponent(text)
                                            : location.pathname + location.search);
    };

    let waiting = 0;
    field.addEventListener('input', () => {
        loadAll();
        clearTimeout(waiting);
        waiting = setTimeout(() => {
            shown = {};
            show();
            keep();
        }, 60);
    });
    field.addEventListener('focus', loadAll, {once: true});
    form.addEventListener('submit', event => event.preventDefault());
    form.hidden = false;
    if (location.hash.startsWith(mark)) {
        field.value = decodeURIComponent(location.hash.slice(mark.length));
        loadAll();
        show();
    }
})();
