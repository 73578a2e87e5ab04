<link rel="icon" href="/quillon-preview/icon.svg" type="image/svg+xml">
