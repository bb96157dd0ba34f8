// What a page of a site still finds of what plant.js left; called with the word of the site.
(async word => {
    const found = {};
    const step = async (name, work) => {
        try {
            found[name] = await work();
        } catch (error) {
            found[name] = String(error);
        }
    };
    const names = async entries => {
        const all = [];
        for await (const [name] of entries) all.push(name);
        return all.sort();
    };
    if (isSecureContext) {
        await step('isUsed', async () => (await navigator.storage.estimate()).usage > 0);
    }
    await step('cookies', async () => document.cookie.split('; ').map(cookie => cookie.split('=')[0])
        .filter(name => name.startsWith('qzjckn')));
    await step('localStorage', async () => Object.keys(localStorage).sort());
    await step('indexedDB', () => new Promise((done, reject) => {
        const request = indexedDB.open('qzidbn' + word);
        request.onupgradeneeded = () => { request.transaction.abort(); done(null); };
        request.onerror = () => done(null);
        request.onsuccess = () => {
            const stores = request.result.objectStoreNames;
            if (!stores.length) return done(null);
            const get = request.result.transaction(stores).objectStore(stores[0]).get('qzidbk' + word);
            get.onsuccess = () => done(get.result ? get.result.text : null);
            get.onerror = () => reject(get.error);
        };
    }));
    if (!isSecureContext) return found;
    await step('caches', () => caches.keys());
    await step('cachedResponse', async () => {
        const response = await caches.match('/qzcapp' + word);
        return response ? response.text() : null;
    });
    await step('files', async () => names((await navigator.storage.getDirectory()).entries()));
    await step('workers', async () => (await navigator.serviceWorker.getRegistrations()).length);
    return found;
})
